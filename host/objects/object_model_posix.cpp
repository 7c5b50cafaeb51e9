#include "host/objects/object_model.h"

namespace qcalc {
namespace {

// Boxes owned by it are answered, never shown.
constexpr std::int32_t kMainWindow = 0x0001'0010;

}  // namespace

class ObjectModel::Windows {};

ObjectModel::ObjectModel(HostState& host) : host_(host) { host_.objects = this; }
ObjectModel::~ObjectModel() { host_.objects = nullptr; }

std::string ObjectModel::WhyNotOffered() { return "Excel's object model is for the Windows build alone"; }
void ObjectModel::Begin() {}
void ObjectModel::End(bool) {}
std::int32_t ObjectModel::MainWindow() const { return kMainWindow; }
void ObjectModel::ShowBooks() {}
void ObjectModel::AllowBookWindows() {}
int ObjectModel::CountReferences() const { return 0; }
std::string ObjectModel::DescribeReferences() const { return {}; }

}  // namespace qcalc
