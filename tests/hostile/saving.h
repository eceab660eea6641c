// What the tests of saves share: commands that save a model, and the files that they leave.

#ifndef TESTS_HOSTILE_SAVING_H_
#define TESTS_HOSTILE_SAVING_H_

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/Program.h"
#include "tests/support/TempFolder.h"

namespace orbseq::test {

inline const char* const kShop = ORBSEQ_SOURCE_DIR "/examples/shop/lattice.xml";
inline const char* const kCustomers = ORBSEQ_SOURCE_DIR "/examples/shop/customers.csv";
inline const char* const kForms[] = {"document", "pmml", "binary", "objxml", "compiled"};

// A model's file and that of the labels beside it; empty: there is none.
struct Files {
  std::string model;
  std::string labels;
};

inline Files filesAt(const std::string& path) {
  return {contentOf(path), contentOf(path + ".labels.csv")};
}

inline void put(const Files& files, const TempFolder& folder) {
  folder.file("m", files.model);
  if (!files.labels.empty()) folder.file("m.labels.csv", files.labels);
}

// A log with labels; the products of all customers are numbered from `first`.
inline std::string log(int customers, int first) {
  std::string rows = "customer,time,item,text\n";
  for (int customer = 0; customer < customers; ++customer)
    for (int row = 0; row < 6; ++row) {
      const std::string item = std::to_string(first + (customer * row + row) % 5);
      rows += std::to_string(customer) + ',' + std::to_string(row / 2) + ',' + item + ",product " +
              item + '\n';
    }
  return rows;
}

// The arguments that make a model at `path`.
using Maker = std::vector<std::string> (*)(const std::string& form, const std::string& source,
                                           const std::string& path);

inline std::vector<std::string> convert(const std::string& form, const std::string& source,
                                        const std::string& path) {
  return {"convert", "--quiet", "--model", source, "--to", form, "--output", path};
}

inline std::vector<std::string> train(const std::string& form, const std::string& source,
                                      const std::string& path) {
  return {"train", "--quiet", "--threads", "1",  "--label", "text", "--input",
          source,  "--to",    form,        "-s", "10",      "-o",   path};
}

// The files of the model that is made so.
inline Files made(Maker make, const std::string& form, const std::string& source) {
  const TempFolder folder;
  const Outcome outcome = run(make(form, source, folder.path("m")));
  EXPECT_EQ(outcome.status, 0) << outcome.error;
  // It is whole: it answers.
  EXPECT_EQ(run({"score", "--model", folder.path("m"), "--input", kCustomers}).status, 0);
  return filesAt(folder.path("m"));
}

}  // namespace orbseq::test

#endif  // TESTS_HOSTILE_SAVING_H_
