#include "cli/LogInput.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <CLI/CLI.hpp>
#include <optional>

#include "cli/StatusLine.h"
#include "cli/exitStatus.h"
#include "cli/messages.h"
#include "io/process.h"
#include "scoring/hostapi/QuErrorFormater.h"

namespace orbseq {

const char* const kLogForms =
    R"help(Logs and histories (each may be compressed with gzip):
  csv, tsv  a row an item, with a header: customer,time,item; --customer, --time and --item name the
            columns; rows may come in any order. Or a row a customer: customer,history, a history
            being item sets of numbers, oldest first: (1 2)(3)
  jsonl     a customer a line: {"customer": "7", "history": "(1 2)(3)"}, or
            {"customer": "7", "baskets": [["tea", "milk"], ["bread"]], "times": [1, 8]}
  spmf      a customer a line: 1 2 -1 3 -1 -2
  basket    a basket a line: customer, time, number of items, items
  sqlite    a database, read only: rows of items as in csv that --query answers
Times are numbers, or dates and times such as 2011-01-18 10:01:00, which count in seconds. Rows of one
customer and time are one basket; --basket day (minute, hour, week, month, or a number in the unit of
the times) puts a longer period into one. Histories as text stay as they are.)help";

CLI::Option* addLogInput(CLI::App& command, LogInput& input, const std::string& text,
                         bool numbersItems) {
  CLI::Option* const path =
      command.add_option("-i,--input", input.path, text + "; - is standard input")
          ->type_name("FILE");
  command
      .add_option("--input-format", input.format,
                  fmt::format("{} (default: told by the name; standard input is csv)",
                              fmt::join(logFormatNames(), ", ")))
      ->check(CLI::IsMember(logFormatNames()).description(""))
      ->type_name("FORMAT");
  command.add_option("--query", input.query, "Of a database: the statement whose rows are read")
      ->type_name("SQL");
  const auto column = [&command](const char* name, std::string& value, const char* what) {
    command.add_option(name, value, what)->type_name("COLUMN")->capture_default_str();
  };
  column("--customer", input.customer, "Column of the customer");
  column("--time", input.time, "Column of the time");
  column("--item", input.item, "Column of the item");
  if (numbersItems) {
    column("--label", input.label, "Column with a description of the item");
    command
        .add_option("--items", input.items,
                    "auto, integer or text: whether items are numbers of their own, or texts that "
                    "get numbers")
        ->check(CLI::IsMember({"auto", "integer", "text"}).description(""))
        ->type_name("KIND")
        ->capture_default_str();
  }
  command
      .add_option(
          "--basket", input.basket,
          "Put a customer's rows of one minute, hour, day, week, month or duration together")
      ->type_name("PERIOD");
  command
      .add_option("--skip-bad-rows", input.skipBadRows,
                  "Leave out up to so many rows whose customer, time or item is bad")
      ->check(CLI::NonNegativeNumber.description(""))
      ->type_name("N")
      ->capture_default_str();
  return path;
}

LogOptions logOptionsOf(const LogInput& input) {
  LogOptions log;
  const auto format = input.format.empty() ? logFormatOf(input.path) : logFormatNamed(input.format);
  if (!format)
    throw UsageError(
        fmt::format("--input: the name {} does not tell the format; give --input-format {}",
                    input.path, fmt::join(logFormatNames(), ", ")));
  log.format = *format;
  if (log.format == LogFormat::kSqlite && input.query.empty())
    throw UsageError("--query: a database wants the statement whose rows are read");
  if (log.format != LogFormat::kSqlite && !input.query.empty())
    throw UsageError("--query wants --input-format sqlite");
  log.query = input.query;
  log.customer = input.customer;
  log.time = input.time;
  log.item = input.item;
  log.label = input.label;
  log.skipBadRows = input.skipBadRows;
  if (input.items == "integer") log.builder.items = ItemKind::kInteger;
  if (input.items == "text") log.builder.items = ItemKind::kText;
  if (!input.basket.empty()) {
    log.builder.basket = Period::of(input.basket);
    if (!log.builder.basket)
      throw UsageError("--basket: " + input.basket +
                       " is neither minute, hour, day, week, month nor a number above 0");
  }
  return log;
}

TransactionLog readLog(const LogInput& input, const LogOptions& options, bool showsProgress) {
  StatusLine line(showsProgress);
  LogOptions log = options;
  log.progress = [&](std::size_t rows, std::uintmax_t bytes, std::optional<std::uintmax_t> size) {
    if (interrupted()) throw Interrupted();
    line.show([&] {
      if (size.value_or(0) == 0) return fmt::format("reading: {} rows", rows);
      const double share = static_cast<double>(bytes) / static_cast<double>(*size);
      return fmt::format("reading: {:.0f} %, {} rows", 100.0 * share, rows);
    });
  };
  TransactionLog read = readLog(input.path, log);
  if (interrupted()) throw Interrupted();
  return read;
}

void warnOfOmissions(std::size_t badRows, const UnknownItems& unknown) {
  if (badRows > 0) printMessage(fmt::format("warning: {} bad rows were left out", badRows));
  if (unknown.occurrences == 0) return;
  std::string examples;
  for (const std::string& text : unknown.examples)
    examples += (examples.empty() ? "" : ", ") + OrbScore::QuErrorFormater::Quote(text);
  printMessage(fmt::format("warning: {} item occurrences name no item of the model, such as {}",
                           unknown.occurrences, examples));
}

}  // namespace orbseq
