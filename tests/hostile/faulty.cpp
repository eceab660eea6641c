// A program with a fault that valgrind must see: "unset" decides by what was never written, "lost"
// loses what it allocated.

#include <cstdio>
#include <cstdlib>
#include <string>

int main(int count, char** words) {
  const std::string fault = count == 2 ? words[1] : "";
  auto* const block = static_cast<volatile int*>(std::malloc(16 * sizeof(int)));
  if (block == nullptr) return 1;
  if (fault == "unset" && block[7] == 12) std::puts("by chance");
  if (fault != "lost") std::free(const_cast<int*>(block));
  return 0;
}
