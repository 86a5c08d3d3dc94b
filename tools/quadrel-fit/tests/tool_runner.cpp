#include "tool_runner.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include <gtest/gtest.h>

extern char **environ;

const std::string &ScratchDirectory() {
  static const std::string directory = [] {
    const char *base = std::getenv("TMPDIR");
    std::string pattern = std::string(base != nullptr ? base : "/tmp") + "/quadrel-fit-test-XXXXXX";
    if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("mkdtemp failed");
    return pattern;
  }();
  // Removes the directory with everything in it when the test program ends.
  static const struct Remover {
    const std::string &path;
    ~Remover() {
      std::error_code ignored;
      std::filesystem::remove_all(path, ignored);
    }
  } remover{directory};
  return directory;
}

std::string WriteScratchFile(const std::string &name, const std::string &text) {
  const std::string path = ScratchDirectory() + "/" + name;
  std::ofstream(path, std::ios::binary) << text;
  return path;
}

std::string ReadWholeFile(const std::string &path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

ToolRun RunTool(const std::vector<std::string> &args, const std::string &stdinPath) {
  // Output goes to files rather than pipes: no reader has to keep up with a
  // program that writes a lot to both streams.
  static int runs = 0;
  const std::string stem = ScratchDirectory() + "/run" + std::to_string(++runs);
  const std::string outPath = stem + ".out";
  const std::string errPath = stem + ".err";

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(
      &actions, STDIN_FILENO, stdinPath.empty() ? "/dev/null" : stdinPath.c_str(), O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, outPath.c_str(),
                                   O_WRONLY | O_CREAT | O_TRUNC, 0644);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, errPath.c_str(),
                                   O_WRONLY | O_CREAT | O_TRUNC, 0644);
  std::vector<std::string> words = args;
  std::vector<char *> argv = {const_cast<char *>(QUADREL_FIT_PATH)};
  for (std::string &word : words)
    argv.push_back(word.data());
  argv.push_back(nullptr);

  ToolRun run;
  pid_t pid = 0;
  if (posix_spawn(&pid, QUADREL_FIT_PATH, &actions, nullptr, argv.data(), environ) == 0) {
    int status = 0;
    if (waitpid(pid, &status, 0) == pid && WIFEXITED(status)) run.status = WEXITSTATUS(status);
  }
  posix_spawn_file_actions_destroy(&actions);
  run.out = ReadWholeFile(outPath);
  run.err = ReadWholeFile(errPath);
  return run;
}

nlohmann::json ParseJson(const ToolRun &run) {
  EXPECT_EQ(run.status, 0) << run.err;
  nlohmann::json parsed = nlohmann::json::parse(run.out, nullptr, false);
  EXPECT_FALSE(parsed.is_discarded()) << run.out << run.err;
  return parsed;
}

void ExpectRefused(const std::vector<std::string> &args, const std::string &message) {
  const ToolRun run = RunTool(args);
  EXPECT_EQ(run.status, 2) << run.err;
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(run.err.rfind("quadrel-fit: ", 0), 0u) << run.err;
  EXPECT_NE(run.err.find(message), std::string::npos) << run.err;
}
