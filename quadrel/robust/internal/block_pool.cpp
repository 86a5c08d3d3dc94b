// The thread pool of one search: see block_pool.h.
#include "quadrel/robust/internal/block_pool.h"

BlockPool::BlockPool(int threads) {
  for (int k = 1; k < threads; ++k)
    m_workers.emplace_back([this] { Work(); });
}

BlockPool::~BlockPool() {
  {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_stop = true;
  }
  m_wake.notify_all();
  for (std::thread &worker : m_workers)
    worker.join();
}

void BlockPool::Run(std::int64_t tasks, const std::function<void(std::int64_t)> &task) {
  if (m_workers.empty() || tasks <= 1) {
    for (std::int64_t b = 0; b < tasks; ++b)
      task(b);
    return;
  }
  {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_task = &task;
    m_tasks = tasks;
    m_next = 0;
    m_finished = 0;
    ++m_job;
  }
  m_wake.notify_all();
  Drain();
  std::unique_lock<std::mutex> lock(m_mutex);
  m_done.wait(lock, [this] { return m_finished == m_tasks; });
  m_task = nullptr;
}

void BlockPool::Drain() {
  std::unique_lock<std::mutex> lock(m_mutex);
  while (m_task != nullptr && m_next < m_tasks) {
    const std::int64_t b = m_next++;
    const std::function<void(std::int64_t)> &task = *m_task;
    lock.unlock();
    task(b);
    lock.lock();
    if (++m_finished == m_tasks) m_done.notify_all();
  }
}

void BlockPool::Work() {
  std::uint64_t seen = 0;
  for (;;) {
    {
      std::unique_lock<std::mutex> lock(m_mutex);
      m_wake.wait(lock, [&] { return m_stop || m_job != seen; });
      if (m_stop) return;
      seen = m_job;
    }
    Drain();
  }
}
