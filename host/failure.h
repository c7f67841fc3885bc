// The two ways in which a command fails. Each carries one sentence for stderr, in UTF-8 and without a full stop.
#pragma once

#include <stdexcept>

namespace tervan::host {

// The command line asks for something that does not exist or makes no sense. Exit code 1.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// A file, the module or the machine does not play along. Exit code 2.
class Failure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace tervan::host
