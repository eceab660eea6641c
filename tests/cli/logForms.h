// The same purchases as a log in every form that the program reads.

#ifndef TESTS_CLI_LOGFORMS_H_
#define TESTS_CLI_LOGFORMS_H_

#include <sqlite3.h>
#include <zlib.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/support/TempFolder.h"

namespace orbseq::test {

// Customers "1", "2" .. with their baskets, oldest first, of integer items.
using Purchases = std::vector<std::vector<std::vector<int>>>;

inline std::string joined(const std::vector<int>& items, const char* between) {
  std::string text;
  for (const int item : items) text += (text.empty() ? "" : between) + std::to_string(item);
  return text;
}

// A row an item; the baskets of a customer have the times 1, 2 ..
inline std::string rowsOf(const Purchases& purchases) {
  std::string text = "customer,time,item\n";
  for (std::size_t c = 0; c < purchases.size(); ++c)
    for (std::size_t b = 0; b < purchases[c].size(); ++b)
      for (const int item : purchases[c][b])
        text +=
            std::to_string(c + 1) + "," + std::to_string(b + 1) + "," + std::to_string(item) + "\n";
  return text;
}

inline std::string historiesOf(const Purchases& purchases) {
  std::string text = "customer,history\n";
  for (std::size_t c = 0; c < purchases.size(); ++c) {
    text += std::to_string(c + 1) + ",";
    for (const auto& basket : purchases[c]) text += "(" + joined(basket, " ") + ")";
    text += "\n";
  }
  return text;
}

// A folder with one file a form.
class LogForms {
 public:
  explicit LogForms(const Purchases& purchases) : purchases_(purchases) {
    const std::string rows = rowsOf(purchases);
    folder_.file("rows.csv", rows);
    std::string tabbed = rows;
    for (char& c : tabbed)
      if (c == ',') c = '\t';
    folder_.file("rows.tsv", tabbed);
    compress(rows);
    folder_.file("histories.csv", historiesOf(purchases));
    folder_.file("histories.jsonl", jsonHistories());
    folder_.file("baskets.jsonl", jsonBaskets());
    folder_.file("log.spmf", spmf());
    folder_.file("log.txt", baskets());
    makeDatabase();
  }

  // What names each form to a command; the long CSV comes first.
  std::vector<std::vector<std::string>> inputs() const {
    std::vector<std::vector<std::string>> all;
    for (const char* name : {"rows.csv", "rows.tsv", "rows.csv.gz", "histories.csv",
                             "histories.jsonl", "baskets.jsonl", "log.spmf"})
      all.push_back({"--input", folder_.path(name)});
    all.push_back({"--input", folder_.path("log.txt"), "--input-format", "basket"});
    all.push_back({"--input", folder_.path("log.db"), "--query",
                   "SELECT customer, day, item FROM sales ORDER BY customer, day DESC", "--time",
                   "day"});
    return all;
  }

  const TempFolder& folder() const noexcept { return folder_; }

 private:
  template <class Basket>
  std::string eachCustomer(const char* begin, const char* end, Basket basket) const {
    std::string text;
    for (std::size_t c = 0; c < purchases_.size(); ++c) {
      text += begin;
      if (*begin != '\0') text += std::to_string(c + 1);
      text += basket(c) + end;
    }
    return text;
  }

  std::string jsonHistories() const {
    return eachCustomer("{\"customer\": \"", "]}\n", [this](std::size_t c) {
      std::string text;
      for (const auto& basket : purchases_[c])
        text += (text.empty() ? "[" : ", [") + joined(basket, ", ") + "]";
      return "\", \"history\": [" + text;
    });
  }

  std::string jsonBaskets() const {
    return eachCustomer("{\"customer\": ", "]}\n", [this](std::size_t c) {
      std::string text, times;
      for (std::size_t b = 0; b < purchases_[c].size(); ++b) {
        text += (b == 0 ? "[\"" : ", [\"") + joined(purchases_[c][b], "\", \"") + "\"]";
        times += (b == 0 ? "" : ", ") + std::to_string(b + 1);
      }
      return ", \"baskets\": [" + text + "], \"times\": [" + times;
    });
  }

  std::string spmf() const {
    return eachCustomer("", "-2\n", [this](std::size_t c) {
      std::string text;
      for (const auto& basket : purchases_[c]) text += joined(basket, " ") + " -1 ";
      return text;
    });
  }

  std::string baskets() const {
    return eachCustomer("", "", [this](std::size_t c) {
      std::string text;
      for (std::size_t b = 0; b < purchases_[c].size(); ++b)
        text += std::to_string(c + 1) + " " + std::to_string(b + 1) + " " +
                std::to_string(purchases_[c][b].size()) + " " + joined(purchases_[c][b], " ") +
                "\n";
      return text;
    });
  }

  void compress(const std::string& text) const {
    const gzFile file = gzopen(folder_.path("rows.csv.gz").c_str(), "wb");
    const int written = gzwrite(file, text.data(), static_cast<unsigned>(text.size()));
    if (gzclose(file) != Z_OK || written != static_cast<int>(text.size()))
      throw std::runtime_error("cannot compress");
  }

  void makeDatabase() const {
    std::string statements = "CREATE TABLE sales(customer INTEGER, day REAL, item INTEGER);BEGIN;";
    for (std::size_t c = 0; c < purchases_.size(); ++c)
      for (std::size_t b = 0; b < purchases_[c].size(); ++b)
        for (const int item : purchases_[c][b])
          statements += "INSERT INTO sales VALUES(" + std::to_string(c + 1) + "," +
                        std::to_string(b + 1) + "," + std::to_string(item) + ");";
    sqlite3* opened = nullptr;
    const int status = sqlite3_open(folder_.path("log.db").c_str(), &opened);
    const std::unique_ptr<sqlite3, int (*)(sqlite3*)> owned(opened, sqlite3_close);
    if (status != SQLITE_OK || sqlite3_exec(opened, (statements + "COMMIT;").c_str(), nullptr,
                                            nullptr, nullptr) != SQLITE_OK)
      throw std::runtime_error("cannot make the database");
  }

  Purchases purchases_;
  TempFolder folder_;
};

}  // namespace orbseq::test

#endif  // TESTS_CLI_LOGFORMS_H_
