// A pool of threads that runs numbered tasks, made for one search and joined
// when it goes out of scope. There is no global state: each search owns its
// pool.
#ifndef QUADREL_ROBUST_INTERNAL_BLOCK_POOL_H
#define QUADREL_ROBUST_INTERNAL_BLOCK_POOL_H

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

class BlockPool {
 public:
  // threads >= 1 workers in all, the calling thread among them (threads - 1
  // are started).
  explicit BlockPool(int threads);
  ~BlockPool();
  BlockPool(const BlockPool &) = delete;
  BlockPool &operator=(const BlockPool &) = delete;

  int Threads() const { return static_cast<int>(m_workers.size()) + 1; }

  // Calls task(b) once for each b in 0 .. tasks - 1, spread over the threads,
  // and returns when all calls have returned. Which thread runs which task
  // varies; tasks must write only their own results.
  void Run(std::int64_t tasks, const std::function<void(std::int64_t)> &task);

 private:
  void Work();
  // Takes and runs tasks of the current job until none is left.
  void Drain();

  std::vector<std::thread> m_workers;
  std::mutex m_mutex;
  std::condition_variable m_wake;
  std::condition_variable m_done;
  const std::function<void(std::int64_t)> *m_task = nullptr;
  std::int64_t m_tasks = 0;
  std::int64_t m_next = 0;
  std::int64_t m_finished = 0;
  std::uint64_t m_job = 0;
  bool m_stop = false;
};

#endif  // QUADREL_ROBUST_INTERNAL_BLOCK_POOL_H
