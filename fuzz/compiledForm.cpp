// A compiled lattice: the first byte tells whether the others are one, or edits, each an offset and
// a word, of one that is compiled here, whatever the form's version. Its checksum is put right, so
// that the checks behind it are reached; where the size alone is wrong, so is the size.
//
// A refusal is a CompiledFormError that names an offset. What is read has the bytes that were
// given, answers within a budget of steps or says that it is spent, and answers the same to a
// workspace that was used as to a new one.

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>
#include <vector>

#include "engine/Recommender.h"
#include "engine/compile.h"
#include "engine/compiledForm.h"
#include "fuzz/Bytes.h"
#include "fuzz/answers.h"
#include "fuzz/check.h"
#include "tests/support/World.h"

namespace {

using namespace orbseq::fuzz;
using namespace orbseq::engine;
using orbseq::engine::Answers;
using orbseq::engine::History;

using Image = std::vector<std::byte>;

class Kept final : public CompiledLattice::Storage {
 public:
  explicit Kept(const Image& image) : image_(image) {}
  std::span<const std::byte> bytes() const noexcept override { return image_; }

 private:
  Image image_;  // of exactly the image's size, so that no read beyond goes unseen
};

Image imageOf(const std::vector<orbseq::test::Count>& counts) {
  const CompiledLattice lattice = compile(orbseq::test::Lattice(counts));
  return {lattice.image().begin(), lattice.image().end()};
}

// With climbs and proposals of both kinds, and a stranger; and one whose items are far apart.
const std::vector<Image>& ownImages() {
  static const std::vector<Image> images = {imageOf({{"", 10},
                                                     {"(1)", 8},
                                                     {"(2)", 5},
                                                     {"(1 2)", 4},
                                                     {"(1)(2)", 3},
                                                     {"(2)(2)", 2},
                                                     {"(2)(5)", 2},
                                                     {"(1 2)(2)", 2},
                                                     {"(1)(1 2)", 1}}),
                                            imageOf({{"", 10},
                                                     {"(1)", 8},
                                                     {"(90000)", 5},
                                                     {"(1 90000)", 4},
                                                     {"(1)(90000)", 3},
                                                     {"(1)(-5)", 3},
                                                     {"(1 90000)(90000)", 2}})};
  return images;
}

Image edited(Image image, Bytes& edits) {
  while (!edits.isUsedUp()) {
    std::size_t offset = static_cast<std::size_t>(edits.byte());
    offset += 256 * static_cast<std::size_t>(edits.byte());
    offset = offset % (image.size() / 4) * 4;
    const std::int32_t word = edits.integer();
    std::memcpy(image.data() + offset, &word, sizeof word);
  }
  return image;
}

void putChecksum(Image& image) {
  if (image.size() < sizeof(Header)) return;
  const std::uint64_t checksum = checksumOf(image);
  std::memcpy(image.data() + offsetof(Header, checksum), &checksum, sizeof checksum);
}

// The image with the size that its header's counts come to, where that is not much.
std::optional<Image> fitted(Image image) {
  constexpr std::uint64_t kMost = 1 << 16;
  if (image.size() < sizeof(Header)) return std::nullopt;
  Header header;
  std::memcpy(&header, image.data(), sizeof header);
  header.bytes = layoutOf(header).bytes;
  if (header.bytes > kMost || header.bytes < sizeof header) return std::nullopt;
  std::memcpy(image.data(), &header, sizeof header);
  image.resize(header.bytes);
  putChecksum(image);
  return image;
}

History historyOf(const std::vector<std::vector<std::int32_t>>& sets) {
  History history;
  for (const auto& set : sets) history.addSet(set);
  return history;
}

bool areSame(const Answers& a, const Answers& b) {
  const auto bits = [](double value) { return std::bit_cast<std::uint64_t>(value); };
  bool same = a.size() == b.size();
  for (std::size_t k = 0; same && k < a.size(); ++k)
    same = a[k].GetItem() == b[k].GetItem() &&
           bits(a[k].GetConfidence()) == bits(b[k].GetConfidence()) &&
           bits(a[k].GetSupport()) == bits(b[k].GetSupport()) &&
           bits(a[k].GetCause()) == bits(b[k].GetCause());
  return same;
}

// In every way, at most 20 of each; nothing where the budget is spent.
std::optional<Answers> ask(const Recommender& recommender, const History& history,
                           Workspace& workspace) {
  Answers answers;
  try {
    recommender.currentItems(history, 20, workspace, answers);
    recommender.futureItems(history, 20, true, workspace, answers);
    recommender.futureItems(history, 20, false, workspace, answers);
  } catch (const StepBudgetSpent&) {
    return std::nullopt;
  }
  require(answers.size() <= 60, "more answers than were asked for");
  return answers;
}

// Planted: the new workspace is asked about a history without sets.
void askAll(const CompiledLattice& lattice) {
  constexpr std::uint64_t kSteps = 20'000;
  const Recommender recommender(lattice);
  Workspace used;
  used.setStepBudget(kSteps);
  for (const History& history :
       {historyOf({}), historyOf({{}}), historyOf({{1}}), historyOf({{1, 2}, {2}}),
        historyOf({{2}, {5}}), historyOf({{1, 2, 5}, {1, 2, 5}, {}, {1, 2, 5}, {1, 2, 5}}),
        historyOf({{-5}, {1, 90000}, {1, 90000}, {90000}})}) {
    Workspace fresh;
    fresh.setStepBudget(kSteps);
    const auto answers = ask(recommender, history, used);
    const auto again = ask(recommender, kPlanted ? History() : history, fresh);
    require(answers.has_value() == again.has_value() && (!answers || areSame(*answers, *again)),
            "a new workspace answers differently");
  }
}

bool isRead(const Image& image) {
  std::optional<CompiledLattice> lattice;
  try {
    lattice.emplace(readCompiledForm(std::make_unique<Kept>(image)));
  } catch (const CompiledFormError& refusal) {
    requireErrorText(refusal.what(), "offset 0x");
    return false;
  }
  require(lattice->image().size() == image.size() &&
              std::memcmp(lattice->image().data(), image.data(), image.size()) == 0,
          "the image is not what was read");
  askAll(*lattice);
  return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Bytes bytes(data, size);
  const auto kind = static_cast<std::size_t>(bytes.below(3));
  const auto* const rest = reinterpret_cast<const std::byte*>(data) + (size == 0 ? 0 : 1);
  Image image =
      kind < ownImages().size() ? edited(ownImages()[kind], bytes) : Image(rest, rest + size - 1);
  putChecksum(image);
  if (isRead(image)) return 0;
  if (const auto other = fitted(image)) isRead(*other);
  return 0;
}
