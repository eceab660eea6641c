// Whether the tests may take long: ORBSEQ_LONG_RUN is set.

#ifndef TESTS_SUPPORT_LONGRUN_H_
#define TESTS_SUPPORT_LONGRUN_H_

#include <cstdlib>

namespace orbseq::test {

inline bool isLongRun() noexcept { return std::getenv("ORBSEQ_LONG_RUN") != nullptr; }

}  // namespace orbseq::test

#endif  // TESTS_SUPPORT_LONGRUN_H_
