#include "solver/engine/workers.h"

#if defined(__x86_64__)
#include <x86intrin.h>
#endif

#include <chrono>

namespace qvslv {

namespace {

/// How long a thread stays awake without a job. Between two jobs of a step lie some ten microseconds of the bodies'
/// dynamics, but milliseconds while results are written.
constexpr std::chrono::microseconds k_awake(200);

constexpr long k_no_more = -1;

}  // namespace

void wait_a_turn(long turn) {
  constexpr long k_alone = 200;  // some microseconds
  if (turn > k_alone) return std::this_thread::yield();
#if defined(__x86_64__)
  _mm_pause();
#endif
}

Workers::Workers(int threads) {
  try {
    for (int k = 1; k < threads; ++k) m_threads.emplace_back([this, k] { work(k); });
  } catch (...) {
    stop();
    throw;
  }
}

Workers::~Workers() { stop(); }

void Workers::stop() {
  {
    const std::lock_guard<std::mutex> alone(m_sleeping);
    m_number.store(k_no_more);
  }
  m_wake.notify_all();
  for (std::thread& thread : m_threads) thread.join();
}

void Workers::run(const Job& job) {
  m_job = &job;
  m_busy.store(static_cast<int>(m_threads.size()));
  m_number.fetch_add(1);
  if (m_asleep.load() > 0) {
    { const std::lock_guard<std::mutex> alone(m_sleeping); }  // one that is about to sleep has looked or will wait
    m_wake.notify_all();
  }
  job(0);
  for (long turn = 0; m_busy.load() > 0; ++turn) wait_a_turn(turn);
}

void Workers::work(int thread) {
  for (long last = 0;;) {
    last = wait_for_job(last);
    if (last == k_no_more) return;
    (*m_job)(thread);
    m_busy.fetch_sub(1);
  }
}

/// The number of the next job.
long Workers::wait_for_job(long last) {
  const auto comes = [&] { return m_number.load() != last; };
  const auto until = std::chrono::steady_clock::now() + k_awake;
  for (long turn = 0; !comes() && std::chrono::steady_clock::now() < until; ++turn) wait_a_turn(turn);
  if (!comes()) {
    std::unique_lock<std::mutex> lock(m_sleeping);
    m_asleep.fetch_add(1);
    m_wake.wait(lock, comes);
    m_asleep.fetch_sub(1);
  }
  return m_number.load();
}

}  // namespace qvslv
