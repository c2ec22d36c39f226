// generate_pair.cpp -- writes two configurations of any size to measure with.
//
//   generate_pair ENTRIES SEED OLD NEW

#include <cstdlib>
#include <fstream>
#include <iostream>

#include "generated_pair.h"

int main(int argc, char** argv) {
  if (argc != 5) {
    std::cerr << "usage: generate_pair ENTRIES SEED OLD NEW\n";
    return 2;
  }
  std::ofstream old(argv[3], std::ios::binary);
  std::ofstream now(argv[4], std::ios::binary);
  generatePair(std::strtoull(argv[1], nullptr, 10), std::strtoull(argv[2], nullptr, 10), old, now);
  if (!old.flush() || !now.flush()) {
    std::cerr << "generate_pair: the files cannot be written\n";
    return 1;
  }
}
