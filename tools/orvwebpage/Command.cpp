#include "Command.h"

#include <fstream>
#include <iostream>
#include <iterator>
#include <sstream>

std::string ReadInput(const std::string& path) {
  if (path == "-") {
    std::ostringstream all;
    all << std::cin.rdbuf();
    return all.str();
  }
  std::ifstream in(path, std::ios::binary);
  if (!in) throw CommandError("cannot read " + path);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}
