#pragma once

#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace qvslv {

/// Threads that do one job together, again and again: a job takes microseconds, so they wait for the next one awake for
/// a while before they sleep.
class Workers {
public:
  using Job = std::function<void(int thread)>;

  /// Throws std::system_error if the system gives no more threads.
  /// @param threads  of which the caller's is one; at least 1
  explicit Workers(int threads);
  ~Workers();
  Workers(const Workers&) = delete;
  Workers& operator=(const Workers&) = delete;

  int count() const { return static_cast<int>(m_threads.size()) + 1; }

  /// Calls the job once per thread, with 0 in the caller's, and returns when all are done. What the caller wrote before
  /// is seen by all threads, and what they wrote by the caller afterwards. A job throws nothing.
  void run(const Job& job);

private:
  void work(int thread);
  void stop();
  long wait_for_job(long last);

  const Job* m_job = nullptr;
  std::atomic<long> m_number = 0;  ///< of the job; negative: no more will come
  std::atomic<int> m_busy = 0;     ///< threads that are not done yet
  std::atomic<int> m_asleep = 0;
  std::mutex m_sleeping;
  std::condition_variable m_wake;
  std::vector<std::thread> m_threads;
};

/// One turn of a loop that waits for another thread: at first awake, then it lets others run.
/// @param turn  counts the turns of this loop
void wait_a_turn(long turn);

}  // namespace qvslv
