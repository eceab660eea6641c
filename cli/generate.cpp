#include "cli/generate.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <charconv>
#include <chrono>
#include <iterator>
#include <limits>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "cli/Output.h"
#include "cli/Progress.h"
#include "cli/Shop.h"
#include "cli/messages.h"
#include "io/csvField.h"
#include "io/process.h"

namespace orbseq {

namespace {

constexpr std::uint64_t kMostCustomers = 10'000'000;
constexpr int kFirstYear = 1970;
constexpr int kLastYear = 2199;

const char* const kFooter =
    R"help(A row of the log is one product that a customer takes, with the columns
  customer  C000001 and so on
  time      to the minute: 2025-03-04 17:45; rows of one customer and time are one basket
  item      the product's code: TEA-012
  label     the product's description; each product has one of its own
There is something to find in it: customers have favourite departments and products that they take
again and again; who takes a machine comes back for its refills three to five weeks later, again and
again; tea goes with milk and paint with a brush; garden things sell in spring, toys and gifts in
December. A quarter of the customers come once.

The same options give the same bytes on every machine. A customer's rows depend on all options but
--customers: a longer log begins with the shorter one. Seeds change customers, not products.

Examples:
  orbseq generate --customers 5000 --output log.csv
  orbseq generate --customers 200000 --seed 7 --items 2000 --days 730 | gzip > log.csv.gz
  orbseq generate --customers 5000 | orbseq train -i - --label label -s 0.01 -o model.xml

Exit status: 0 done, 1 wrong usage, 3 files or memory, 4 a bug, 130 interrupted. A file is replaced
as a whole, and not at all when anything fails.)help";

// Of digits alone, else nothing.
template <class Number>
std::optional<Number> numberOf(std::string_view digits) {
  Number number = 0;
  const char* const end = digits.data() + digits.size();
  const auto [rest, error] = std::from_chars(digits.data(), end, number);
  if (error != std::errc{} || rest != end) return {};
  return number;
}

// Reading the option itself would turn -1 into the largest seed.
std::string refusalOfSeed(const std::string& text) {
  if (numberOf<std::uint64_t>(text)) return {};
  return fmt::format("Value {} not in range 0 to {}", text,
                     std::numeric_limits<std::uint64_t>::max());
}

std::optional<std::chrono::year_month_day> dateOf(std::string_view text) {
  if (text.size() != 10 || text[4] != '-' || text[7] != '-') return {};
  const auto year = numberOf<std::uint16_t>(text.substr(0, 4));
  const auto month = numberOf<std::uint16_t>(text.substr(5, 2));
  const auto day = numberOf<std::uint16_t>(text.substr(8, 2));
  if (!year || !month || !day || *year < kFirstYear || *year > kLastYear) return {};
  const std::chrono::year_month_day date{std::chrono::year(*year), std::chrono::month(*month),
                                         std::chrono::day(*day)};
  if (!date.ok()) return {};
  return date;
}

ShopOptions shopOptionsOf(const GenerateOptions& options) {
  const auto start = dateOf(options.start);
  if (!start)
    throw UsageError(fmt::format("--start: {} is no date from {}-01-01 to {}-12-31", options.start,
                                 kFirstYear, kLastYear));
  return {options.seed, options.items, options.days, *start};
}

// "2025-03-04" for each day.
std::vector<std::string> datesOf(const ShopOptions& options) {
  std::vector<std::string> dates;
  const std::chrono::sys_days start(options.start);
  for (std::int32_t day = 0; day < options.days; ++day) {
    const std::chrono::year_month_day date(start + std::chrono::days(day));
    dates.push_back(fmt::format("{:04}-{:02}-{:02}", int{date.year()}, unsigned{date.month()},
                                unsigned{date.day()}));
  }
  return dates;
}

struct Counts {
  std::uint64_t baskets = 0;
  std::uint64_t rows = 0;
};

class LogWriter {
 public:
  LogWriter(const Shop& shop, std::vector<std::string> dates) : dates_(std::move(dates)) {
    for (const Product& product : shop.products())
      products_.push_back(csvField(product.code) + "," + csvField(product.label) + "\n");
  }

  void append(std::string& text, std::uint64_t number, const std::vector<Purchase>& purchases) {
    const Purchase* previous = nullptr;
    for (const Purchase& purchase : purchases) {
      fmt::format_to(std::back_inserter(text), "C{:06},{} {:02}:{:02},{}", number,
                     dates_[static_cast<std::size_t>(purchase.day)], purchase.minute / 60,
                     purchase.minute % 60, products_[purchase.product]);
      if (previous == nullptr || previous->day != purchase.day) ++counts_.baskets;
      previous = &purchase;
    }
    counts_.rows += purchases.size();
  }

  const Counts& counts() const noexcept { return counts_; }

 private:
  std::vector<std::string> dates_;
  std::vector<std::string> products_;  // the end of the row of each
  Counts counts_;
};

std::string countOf(std::uint64_t count, const char* thing) {
  return fmt::format("{} {}{}", count, thing, count == 1 ? "" : "s");
}

}  // namespace

CLI::App* addGenerateCommand(CLI::App& program, GenerateOptions& options) {
  CLI::App* command = program.add_subcommand(
      "generate", "Make up a log of a simulated shop, to try the other commands on");
  command->add_option("-n,--customers", options.customers, "How many, 1 to 10000000")
      ->required()
      ->check(CLI::Range(std::uint64_t{1}, kMostCustomers).description(""))
      ->type_name("N");
  command->add_option("--seed", options.seed, "Another number makes other customers; from 0")
      ->check(&refusalOfSeed)
      ->type_name("N")
      ->capture_default_str();
  command->add_option("--items", options.items, "Products of the shop, 50 to 100000")
      ->check(
          CLI::Range(ShopCatalogue::kFewestProducts, ShopCatalogue::kMostProducts).description(""))
      ->type_name("N")
      ->capture_default_str();
  command->add_option("--days", options.days, "Days from the first to the last, 30 to 3650")
      ->check(CLI::Range(Shop::kFewestDays, Shop::kMostDays).description(""))
      ->type_name("N")
      ->capture_default_str();
  command->add_option("--start", options.start, "The first day, 1970-01-01 to 2199-12-31")
      ->type_name("DATE")
      ->capture_default_str();
  command
      ->add_option("-o,--output", options.output,
                   "Where the log goes; the file is replaced as a whole; - is standard output")
      ->type_name("FILE")
      ->capture_default_str();
  command->add_flag("-q,--quiet", options.quiet, "No progress bar and no summary");
  command->footer(kFooter);
  return command;
}

ExitStatus runGenerate(const GenerateOptions& options) {
  const ShopOptions shopOptions = shopOptionsOf(options);
  const Shop shop(shopOptions);
  LogWriter writer(shop, datesOf(shopOptions));
  Output output(options.output);
  output.text() = "customer,time,item,label\n";
  {
    Progress bar(!options.quiet && isTerminal(StandardStream::kError), options.customers);
    for (std::uint64_t number = 1; number <= options.customers; ++number) {
      if (interrupted()) throw Interrupted();
      writer.append(output.text(), number, shop.customer(number));
      output.flushIfFull();
      bar.reach(number);
    }
  }
  output.finish();
  if (!options.quiet)
    printMessage(fmt::format("{}, {}, {} of {}", countOf(options.customers, "customer"),
                             countOf(writer.counts().baskets, "basket"),
                             countOf(writer.counts().rows, "row"),
                             countOf(shop.products().size(), "product")));
  return ExitStatus::kDone;
}

}  // namespace orbseq
