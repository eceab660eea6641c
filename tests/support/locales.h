// Locales for one test: each guard restores what was set before it.

#ifndef TESTS_SUPPORT_LOCALES_H_
#define TESTS_SUPPORT_LOCALES_H_

#include <clocale>
#include <initializer_list>
#include <locale>
#include <string>

namespace orbseq::test {

// Sets the C locale to the first of the names that is installed.
class ScopedCLocale {
 public:
  ScopedCLocale(std::initializer_list<const char*> names) {
    for (const char* const name : names) {
      if (std::setlocale(LC_ALL, name) == nullptr) continue;
      name_ = name;
      return;
    }
  }
  ~ScopedCLocale() { std::setlocale(LC_ALL, previous_.c_str()); }
  ScopedCLocale(const ScopedCLocale&) = delete;
  ScopedCLocale& operator=(const ScopedCLocale&) = delete;

  bool isInstalled() const { return !name_.empty(); }
  const std::string& name() const { return name_; }

 private:
  std::string previous_ = std::setlocale(LC_ALL, nullptr);
  std::string name_;
};

// Sets the locale of all streams made from now on; one with a name is the C locale as well.
class ScopedGlobalLocale {
 public:
  explicit ScopedGlobalLocale(const std::locale& locale) : previous_(std::locale::global(locale)) {}
  ~ScopedGlobalLocale() {
    std::locale::global(previous_);
    std::setlocale(LC_ALL, previousName_.c_str());
  }
  ScopedGlobalLocale(const ScopedGlobalLocale&) = delete;
  ScopedGlobalLocale& operator=(const ScopedGlobalLocale&) = delete;

 private:
  std::string previousName_ = std::setlocale(LC_ALL, nullptr);
  std::locale previous_;
};

// Numbers as 1.234.567,5; part of no installed locale, so that it is there on every machine.
class GroupingPunctuation : public std::numpunct<char> {
 protected:
  char do_decimal_point() const override { return ','; }
  char do_thousands_sep() const override { return '.'; }
  std::string do_grouping() const override { return "\3"; }
};

inline std::locale groupingLocale() {
  return std::locale(std::locale::classic(), new GroupingPunctuation);
}

}  // namespace orbseq::test

#endif  // TESTS_SUPPORT_LOCALES_H_
