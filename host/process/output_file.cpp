#include "host/process/output_file.h"

#include <cerrno>
#include <iostream>
#include <random>
#include <system_error>

#include "host/process/checked_output.h"
#include "host/text/path_text.h"

namespace qcalc {
namespace {

/// The file itself where a link names it, so that the link stays one.
std::filesystem::path TargetOf(const std::filesystem::path& path) {
  std::error_code unknown;
  const std::filesystem::path target = std::filesystem::canonical(path, unknown);
  return unknown ? path : target;
}

std::filesystem::path PlaceBeside(const std::filesystem::path& path) {
  std::filesystem::path place = path;
  place += "." + std::to_string(std::random_device()()) + ".part";
  return place;
}

}  // namespace

void PrintedOutput::Send(std::string_view bytes) { std::cout << bytes << std::flush; }

OutputFile::OutputFile(const std::filesystem::path& path) : path_(TargetOf(path)) {
  std::error_code unknown;
  const auto status = std::filesystem::status(path_, unknown);
  if (std::filesystem::is_directory(status)) throw OutputFailure{TextOf(path) + ": it is a folder"};
  const bool isReplaced = std::filesystem::is_regular_file(status);
  written_ = isReplaced || !std::filesystem::exists(status) ? PlaceBeside(path_) : path_;
  errno = 0;
  stream_.open(written_, std::ios::binary);
  if (!stream_) {
    const std::string reason = std::generic_category().message(errno);
    throw OutputFailure{TextOf(path) + ": " + reason};
  }
  if (isReplaced) std::filesystem::permissions(written_, status.permissions(), unknown);
}

OutputFile::~OutputFile() {
  if (written_.empty() || written_ == path_) return;
  stream_.close();
  std::error_code unknown;
  std::filesystem::remove(written_, unknown);
}

void OutputFile::Fail(std::string_view what) const { throw OutputFailure{TextOf(path_) + ": " + std::string(what)}; }

void OutputFile::Send(std::string_view bytes) {
  errno = 0;
  if (!stream_.write(bytes.data(), static_cast<std::streamsize>(bytes.size())))
    Fail(std::generic_category().message(errno));
}

void OutputFile::Finish() {
  ByteOutput::Finish();
  errno = 0;
  stream_.close();
  if (!stream_) Fail(std::generic_category().message(errno));
  if (written_ != path_) {
    std::error_code fault;
    std::filesystem::rename(written_, path_, fault);
    if (fault) Fail(fault.message());
  }
  written_.clear();
}

}  // namespace qcalc
