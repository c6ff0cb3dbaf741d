#include "common/call/kept_set_up.h"

#include "common/call/entry_frame.h"
#include "common/call/messages.h"

namespace qv {

void kept_set_up::compare(void* handle, std::pair<int, int> element, std::initializer_list<kept_entry> entries) {
  for (const kept_entry& e : entries) {
    if (!fits_int(e.asked) || static_cast<int>(e.asked) == e.held) continue;
    if (!m_told.insert(element).second) return;
    int count = 0;
    char* messages[k_message_slots] = {};
    add_message(m_prefix + ("The " + text_of(e.entry)) + " is " + std::to_string(static_cast<int>(e.asked)) +
                    "; the set-up before had " + std::to_string(e.held) +
                    ", which stays until the library is unloaded. Run another model in another process.",
                count, messages);
    THROW_ERROR(handle, "USUB WARNING", count, messages);
    return;
  }
}

}  // namespace qv
