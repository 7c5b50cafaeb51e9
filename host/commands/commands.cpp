#include "host/commands/commands.h"

#include <algorithm>
#include <iostream>

namespace qcalc {

bool PrintComplaints(Session& session) {
  const std::vector<std::string> complaints = session.Host().complaints.Take();
  for (const std::string& text : complaints) std::cerr << text << std::endl;
  return !complaints.empty();
}

ExitStatus WithAddin(const std::filesystem::path& addin, const std::function<ExitStatus(Session&)>& work) {
  Session session(addin);
  try {
    const ExitStatus status = work(session);
    session.Finish();
    return PrintComplaints(session) ? std::max(status, kFailed) : status;
  } catch (const AddinFailure& failure) {
    std::cerr << addin.string() << ": " << failure.what() << std::endl;
    return kNoAddin;
  }
}

}  // namespace qcalc
