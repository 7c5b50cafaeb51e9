#include "host/commands/commands.h"

#include <iostream>

namespace qcalc {

bool PrintComplaints(Session& session) {
  const std::vector<std::string> complaints = session.Host().complaints.Take();
  for (const std::string& text : complaints) std::cerr << text << std::endl;
  return !complaints.empty();
}

}  // namespace qcalc
