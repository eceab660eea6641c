// Links the module: makes a lattice in memory, and a translator through the entry.

#include <iostream>
#include <memory>
#include <vector>

#include "lattice/SequenceDictionary.h"
#include "scoring/GiveMyTranslator.h"
#include "sequence/SeqConsequentDescriptor.h"
#include "sequence/SequenceCounter.h"

int main() {
  using namespace SEQUENCE_NAMESPACE_800;

  const std::unique_ptr<OrbScore::ScoreTranslator> translator(GiveMyTranslator());
  SequenceDictionary dictionary(3);
  const int item[] = {1, 7};
  const int* const sets[] = {item};
  const SequenceCounter counter(0, 5, nullptr);
  dictionary.addSequence(sets, 0, &counter);
  dictionary.addSequence(sets, 1, &counter);
  dictionary.buildLattice();
  std::vector<SeqConsequentDescriptor> popular;
  dictionary.GetCurrentItems(popular, nullptr, 20);

  std::cout << popular.size() << " popular item\n";
  return translator && popular.size() == 1 && popular.front().GetItem() == 7 ? 0 : 1;
}
