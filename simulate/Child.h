// Runs in processes of their own: if the process ends or crashes, only that run ends.
#pragma once

#include "simulate/Program.h"
#include "simulate/Run.h"

namespace Simulate {

// A run under way in a child process. A crash is a report too, of the invariant "alive".
class Child {
  public:
    // Starts the run. The program need not outlive the call. With the name of a file the run is
    // written down there as a scenario, if it fails. Errors: std::system_error.
    explicit Child(Program const& program, std::string const& scenario = "");
    Child(Child const&) = delete;
    Child& operator=(Child const&) = delete;
    // Kills the run if wait() was not called.
    ~Child();

    // Waits for the run's end. Errors: std::system_error.
    Report wait();

  private:
    int pid_ = -1;
    int pipe_ = -1;
};

Report runInChild(Program const& program, std::string const& scenario = "");

}  // namespace Simulate
