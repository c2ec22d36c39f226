#include "FileError.h"

#include <cstring>

namespace cfgstore {

FileError::FileError(const std::string& step, int error) : std::runtime_error(step + ": " + std::strerror(error)) {}

}  // namespace cfgstore
