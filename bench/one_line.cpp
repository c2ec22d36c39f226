// one_line.cpp -- the least that a C++ program does: start, print one line, end. Start-up times are measured against
// it.

#include <iostream>

int main() { std::cout << "1 program\n"; }
