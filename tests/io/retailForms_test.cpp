// A shop's real lattice: every form of it gives every customer the same recommendations, bit for
// bit.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include "io/ModelFile.h"
#include "tests/io/modelSamples.h"
#include "tests/support/TempFolder.h"

namespace {

namespace fs = std::filesystem;
using namespace orbseq::test;
using orbseq::Model;

struct Customer {
  std::string name;
  History history;
};

// The rows "NAME,(1 2)(3)" behind a header.
std::vector<Customer> customersOf(const fs::path& path) {
  std::vector<Customer> customers;
  std::ifstream file(path);
  std::string line;
  std::getline(file, line);
  while (std::getline(file, line)) {
    const std::size_t comma = line.find(',');
    customers.push_back({line.substr(0, comma), history(line.substr(comma + 1))});
  }
  return customers;
}

TEST(RetailForms, EveryFormRecommendsTheSameToEveryCustomer) {
  const fs::path data = fs::path(ORBSEQ_DATA_DIR) / "retail";
  if (!fs::is_directory(data)) {
    std::cerr << "\n*** SKIPPED: no real data at " << data << " ***\n\n";
    GTEST_SKIP() << "no real data at " << data;
  }
  const TempFolder folder;
  const Model model = orbseq::readModel((data / "lattice.xml").string());
  std::vector<Model> forms;
  for (const orbseq::ModelForm form : kEveryForm) {
    const std::string path = folder.path(nameOf(form));
    saveModel(path, model, form);
    forms.push_back(orbseq::readModel(path));
    EXPECT_EQ(contentsOf(*forms.back().lattice), contentsOf(*model.lattice)) << nameOf(form);
    EXPECT_EQ(forms.back().labels, model.labels) << nameOf(form);
  }

  const std::vector<Customer> customers = customersOf(data / "histories.csv");
  std::size_t answers = 0;
  int differences = 0;
  for (const Customer& customer : customers) {
    const auto whole = futureItems(*model.lattice, customer.history);
    const auto beginnings = futureItems(*model.lattice, customer.history, 20, false);
    const auto current = currentItems(*model.lattice, customer.history);
    answers += whole.size() + beginnings.size() + current.size();
    for (const Model& form : forms)
      if (futureItems(*form.lattice, customer.history) != whole ||
          futureItems(*form.lattice, customer.history, 20, false) != beginnings ||
          currentItems(*form.lattice, customer.history) != current)
        ++differences;
  }
  std::cout << customers.size() << " customers, " << answers << " answers in each of "
            << forms.size() << " forms, " << differences << " differences\n";
  EXPECT_EQ(customers.size(), 4339U);
  EXPECT_GT(answers, 100'000U);
  EXPECT_EQ(differences, 0);
}

}  // namespace
