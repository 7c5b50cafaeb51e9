// The process-wide list of registration records.
#pragma once

#include "frame/registration/function_declaration.h"

namespace quillmere {

/// The registration record of one function: a static object that links itself into one list at static initialisation.
/// Each new record goes to the head, so the list runs in reverse order of initialisation. Linking allocates nothing and
/// cannot fail.
class CXllFunctionRecord {
 public:
  /// Links a record for `declaration`, which it refers to and which must outlive it.
  explicit CXllFunctionRecord(const FunctionDeclaration& declaration) noexcept
      : declaration_(declaration), next_(head_) {
    head_ = this;
  }
  CXllFunctionRecord(const CXllFunctionRecord&) = delete;
  CXllFunctionRecord& operator=(const CXllFunctionRecord&) = delete;

  /// The record linked last, or null.
  static const CXllFunctionRecord* Head() noexcept { return head_; }

  const CXllFunctionRecord* Next() const noexcept { return next_; }
  const FunctionDeclaration& Declaration() const noexcept { return declaration_; }

 private:
  static inline constinit const CXllFunctionRecord* head_ = nullptr;

  const FunctionDeclaration& declaration_;
  const CXllFunctionRecord* next_;
};

}  // namespace quillmere
