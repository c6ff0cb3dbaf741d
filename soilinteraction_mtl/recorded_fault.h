#pragma once

#include <exception>
#include <string>
#include <utility>

#include "common/call/messages.h"

namespace qvsoilinteractionmtl {

/// Runs a step of the track's evaluation. A standard exception becomes a message behind the banner and is not thrown
/// on. Kept: the call goes on. Only the message tells of the exception, and the frame reports it only if a later fault
/// ends the call.
/// @return  true if the step came to its end
template <class Step>
bool run_recorded(Step&& step, const qv::fault_channel& channel) {
  try {
    std::forward<Step>(step)();
    return true;
  } catch (const std::exception& error) {
    qv::add_message("\n < QV_SOLVER:: BRISK ERROR> \n SOIL INTERACTION MTL ERROR : " + std::string(error.what()) + "\n",
                    channel.ierr, channel.msg);
    return false;
  }
}

}  // namespace qvsoilinteractionmtl
