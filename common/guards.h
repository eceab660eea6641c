// Names for the checks of what comes from outside, so that a test can take one away and see that
// what it keeps out then comes in.
//
// A check is written `if (isBad && guarded("csv.NUL")) refuse`. Built as it is shipped, guarded()
// is always true and costs nothing. Built with ORBSEQ_SWITCHABLE_GUARDS, as the tests are, it is
// false for the one check that the environment names in ORBSEQ_WITHOUT_GUARD, and the name of
// every check that refuses is appended, a line each, to the file that ORBSEQ_GUARD_LOG names.
//
// Names are `form.what`: room or form first, then what is checked. tests/hostile/guards.txt holds
// for each the test that fails without it.

#ifndef COMMON_GUARDS_H_
#define COMMON_GUARDS_H_

namespace orbseq {

// False in a build with ORBSEQ_NO_GUARDS, which is for measuring what the checks cost and for
// nothing else. A check that costs a call asks this first.
#ifdef ORBSEQ_NO_GUARDS
constexpr bool kGuards = false;
#else
constexpr bool kGuards = true;
#endif

#ifdef ORBSEQ_SWITCHABLE_GUARDS

// The name is what the parts make together. Any thread.
bool guarded(const char* name, const char* of = "", const char* field = "") noexcept;

#else

constexpr bool guarded(const char*, const char* = "", const char* = "") noexcept { return kGuards; }

#endif

}  // namespace orbseq

#endif  // COMMON_GUARDS_H_
