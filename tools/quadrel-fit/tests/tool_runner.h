// Runs the built quadrel-fit as a user would and collects what it printed.
#ifndef QUADREL_FIT_TESTS_TOOL_RUNNER_H
#define QUADREL_FIT_TESTS_TOOL_RUNNER_H

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

struct ToolRun {
  int status = -1;  // exit status, or -1 if the program did not exit normally
  std::string out;
  std::string err;
};

// Runs the tool with args; standard input comes from stdinPath (or /dev/null).
ToolRun RunTool(const std::vector<std::string> &args, const std::string &stdinPath = "");

// What a run printed on standard output, read as JSON; the run must have ended
// with status 0.
nlohmann::json ParseJson(const ToolRun &run);

// Runs the tool with args and expects it to refuse them: status 2, nothing on
// standard output, and "quadrel-fit: " then a message holding message on
// standard error.
void ExpectRefused(const std::vector<std::string> &args, const std::string &message);

// A fresh directory for the files of one test program.
const std::string &ScratchDirectory();
// Writes text to a file in the scratch directory and gives its path.
std::string WriteScratchFile(const std::string &name, const std::string &text);
std::string ReadWholeFile(const std::string &path);

#endif  // QUADREL_FIT_TESTS_TOOL_RUNNER_H
