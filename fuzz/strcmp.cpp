// Keeps the fuzzer's strcmp out of a program: libraries cannot see this one, and come to that of
// the C library. Each step through a DOM is a cast, and a cast compares the names of types; the
// fuzzer's notes every pair, to put it into inputs, and takes more than half of the time. The code
// under test calls none, so that no check is lost.

extern "C" __attribute__((visibility("hidden"), used)) int strcmp(const char* a, const char* b) {
  while (*a != '\0' && *a == *b) {
    ++a;
    ++b;
  }
  return static_cast<unsigned char>(*a) - static_cast<unsigned char>(*b);
}
