// ORBSEQ_EXPORT marks what the module shows to the outside.
//
// The rooms are compiled with hidden visibility; a class that carries the mark keeps its type
// information, its virtual table and its members visible in the shared library, so that
// exceptions and dynamic_cast work across a dlopen boundary.

#ifndef COMMON_ORBEXPORT_H_
#define COMMON_ORBEXPORT_H_

#define ORBSEQ_EXPORT __attribute__((visibility("default")))

#endif  // COMMON_ORBEXPORT_H_
