// Links one room and nothing of the host.

#include <memory>

#include "sequence/NTSequence.h"
#include "sequence/Sequence.h"

int main() {
  using namespace SEQUENCE_NAMESPACE_800;

  const int items[] = {2, 1, 2};
  const NTSequence packed(items);
  const std::unique_ptr<Sequence> unpacked(packed.createSequence());
  return packed.HashCode() == 88390 && unpacked->Size() == 2 ? 0 : 1;
}
