// A shop's real lattice and customers, against the answers of an independent program: every item,
// order and number, bit for bit; also after the lattice went through other forms.

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <sstream>

#include "host/SafeDocument.h"
#include "tests/contract/support.h"
#include "tests/support/TempFolder.h"

namespace {

namespace fs = std::filesystem;
using test::Answer;
using test::Mode;

const std::map<std::string, Mode> kModes = {{"current", Mode::kCurrent},
                                            {"future", Mode::kFuture},
                                            {"future-all-prefixes", Mode::kFutureAllBeginnings}};

using Key = std::pair<std::string, std::string>;  // customer, mode
using Answers = std::map<Key, std::vector<Answer>>;

// The lines of a gzip file.
std::vector<std::string> linesOf(const fs::path& path) {
  std::vector<std::string> lines;
  const std::string command = "gzip -dc '" + path.string() + "'";
  const std::unique_ptr<FILE, int (*)(FILE*)> pipe(::popen(command.c_str(), "r"), ::pclose);
  if (!pipe) return lines;
  char buffer[4096];
  while (std::fgets(buffer, sizeof buffer, pipe.get()) != nullptr) lines.emplace_back(buffer);
  return lines;
}

// customer, mode, rank, item, confidence, support, cause; ranks ascend within a customer's mode.
Answers expectedAnswers(const fs::path& path) {
  Answers answers;
  const std::vector<std::string> lines = linesOf(path);
  for (std::size_t i = 1; i < lines.size(); ++i) {
    std::istringstream in(lines[i]);
    std::string customer, mode, rank, item, confidence, support, cause;
    in >> customer >> mode >> rank >> item >> confidence >> support >> cause;
    std::vector<Answer>& list = answers[{customer, mode}];
    EXPECT_EQ(rank, std::to_string(list.size() + 1)) << lines[i];
    list.push_back({std::stoi(item), std::strtod(confidence.c_str(), nullptr),
                    std::strtod(support.c_str(), nullptr), std::strtod(cause.c_str(), nullptr)});
  }
  return answers;
}

// Scores every customer with the document, in each mode. `data` is the folder of the answers.
void expectTheAnswers(const fs::path& data, const std::string& document) {
  const Answers expected = expectedAnswers(data / "answers.tsv.gz");
  const auto model = test::module().LoadModel(OrbScore::SafeDocument::Load(document));
  std::ifstream histories(data / "histories.csv");
  std::string line;
  std::getline(histories, line);

  int customers = 0;
  std::size_t answers = 0;
  int differences = 0;
  while (std::getline(histories, line)) {
    const std::size_t comma = line.find(',');
    const std::string customer = line.substr(0, comma);
    ++customers;
    for (const auto& [name, mode] : kModes) {
      const auto place = expected.find({customer, name});
      const std::vector<Answer> wanted =
          place != expected.end() ? place->second : std::vector<Answer>();
      const std::vector<Answer> given = test::ask(*model, line.substr(comma + 1), mode);
      answers += given.size();
      if (given == wanted) continue;
      ++differences;
      if (differences <= 5) {  // the first few in full; all of them count below
        EXPECT_EQ(given, wanted) << "customer " << customer << ", " << name;
      }
    }
  }

  std::cout << customers << " customers, " << answers << " answers, " << differences
            << " differences\n";
  EXPECT_EQ(differences, 0);
  EXPECT_EQ(customers, 4339);
  EXPECT_EQ(answers, 167831U);
}

class RetailAnswers : public testing::Test {
 protected:
  void SetUp() override {
    if (fs::is_directory(data_)) return;
    std::cerr << "\n*** SKIPPED: no real data at " << data_ << " ***\n\n";
    GTEST_SKIP() << "no real data at " << data_;
  }

  const fs::path data_ = fs::path(ORBSEQ_DATA_DIR) / "retail";
};

// Runs the program to turn a model into another form.
void convert(const std::string& from, const std::string& to) {
  const std::string command =
      ORBSEQ_PROGRAM " convert --quiet --model '" + from + "' --output '" + to + "'";
  ASSERT_EQ(std::system(command.c_str()), 0) << command;
}

TEST_F(RetailAnswers, EveryCustomerGetsTheExpectedAnswersBitForBit) {
  expectTheAnswers(data_, (data_ / "lattice.xml").string());
}

TEST_F(RetailAnswers, ADocumentWrittenFromTheBinaryFormGivesThem) {
  const orbseq::test::TempFolder folder;
  convert((data_ / "lattice.xml").string(), folder.path("retail.bin"));
  convert(folder.path("retail.bin"), folder.path("closed.xml"));
  expectTheAnswers(data_, folder.path("closed.xml"));
}

TEST_F(RetailAnswers, APmmlDocumentWithTheLatticeGivesThem) {
  const orbseq::test::TempFolder folder;
  convert((data_ / "lattice.xml").string(), folder.path("retail.bin"));
  convert(folder.path("retail.bin"), folder.path("retail.pmml"));
  expectTheAnswers(data_, folder.path("retail.pmml"));
}

}  // namespace
