// What asking one question after the other takes, beside the lattice: made once and used again.
//
// Threads: one at a time on one object; engine/Pool.h lends them to threads.

#ifndef ENGINE_SCRATCH_H_
#define ENGINE_SCRATCH_H_

#include "engine/History.h"
#include "engine/Recommender.h"
#include "engine/Workspace.h"

namespace orbseq::engine {

struct Scratch {
  History history;
  Workspace workspace;
  Answers answers;
};

}  // namespace orbseq::engine

#endif  // ENGINE_SCRATCH_H_
