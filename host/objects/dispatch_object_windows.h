// A late-bound object: IDispatch over a table of members, without a type library.
#pragma once

#include <windows.h>
// Behind it: these need its types.
#include <oleauto.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "host/objects/object_office_windows.h"
#include "host/objects/variants_windows.h"

namespace qcalc {

/// Thrown by members: the call fails. Codes of DISP_E_... are what Invoke returns; others go into the EXCEPINFO.
struct ObjectFailure {
  HRESULT code;
  std::string description = {};  ///< UTF-8
  UINT argument = 0;             ///< with DISP_E_TYPEMISMATCH, 0-based
};

/// Error 1004, with which Excel refuses what it cannot do.
inline constexpr HRESULT kExcelError = static_cast<HRESULT>(0x800A03EC);

/// The arguments of one call, in the order in which they are written.
class ObjectCall {
 public:
  ObjectCall(const DISPPARAMS& parameters, bool isPut) : parameters_(parameters), isPut_(isPut) {}

  bool IsPut() const { return isPut_; }
  /// How many there are; of a put, the value to be put is the last.
  UINT Count() const { return parameters_.cArgs; }
  /// Argument `index` (0-based); null when it was left out.
  const VARIANT* At(UINT index) const;
  /// The argument converted to that type. Throws ObjectFailure where it cannot be.
  Variant AtAs(UINT index, VARTYPE type) const;
  bool BooleanAt(UINT index, bool otherwise) const;
  LONG LongAt(UINT index, LONG otherwise) const;

 private:
  const DISPPARAMS& parameters_;
  const bool isPut_;
};

class DispatchObject;

struct ObjectMember {
  const wchar_t* name;
  WORD kinds;  ///< DISPATCH_METHOD, DISPATCH_PROPERTYGET, DISPATCH_PROPERTYPUT
  UINT fewest;
  UINT most;
  Variant (*invoke)(DispatchObject& self, const ObjectCall& call);
};

/// A member function as a member of that name; without more, a property that is got and takes no argument.
template <typename Object, Variant (Object::*member)(const ObjectCall&)>
constexpr ObjectMember Member(const wchar_t* name, WORD kinds = DISPATCH_PROPERTYGET, UINT fewest = 0, UINT most = 0) {
  return {name, kinds, fewest, std::max(fewest, most),
          [](DispatchObject& self, const ObjectCall& call) { return (static_cast<Object&>(self).*member)(call); }};
}

// COM's interfaces have no destructor: who holds one can only release it.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

/// Lives as long as a reference to it is held; may be called on any thread.
class DispatchObject : public IDispatch {
 public:
  /// The new object has no reference yet. The members' table lasts for ever; DISPIDs are its places, from 1 on.
  DispatchObject(std::shared_ptr<ObjectOffice> office, ObjectKind kind, std::span<const ObjectMember> members)
      : office_(std::move(office)), kind_(kind), members_(members) {}
  DispatchObject(const DispatchObject&) = delete;
  DispatchObject& operator=(const DispatchObject&) = delete;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override;
  ULONG STDMETHODCALLTYPE AddRef() override;
  ULONG STDMETHODCALLTYPE Release() override;
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override;
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) override;
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID locale,
                                          DISPID* ids) override;
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID reserved, LCID locale, WORD kinds, DISPPARAMS* parameters,
                                   VARIANT* result, EXCEPINFO* exception, UINT* badArgument) override;

  /// The member by which objects lead to Application.
  Variant ItsApplication(const ObjectCall& call);

  /// The host's own reference, which counts as none from outside.
  void Keep() {
    ++references_;
    isKept_ = true;
  }
  void LetGo();

 protected:
  virtual ~DispatchObject() = default;

  /// Throws when the session is over.
  HostState& Host() const;
  const std::shared_ptr<ObjectOffice>& Office() const { return office_; }

  /// A new object as the result of a member.
  template <typename Object, typename... Arguments>
  Variant Make(Arguments&&... arguments) const {
    auto* const object = new Object(office_, std::forward<Arguments>(arguments)...);
    object->AddRef();
    return Variant::OfObject(object);
  }

 private:
  HRESULT Call(const ObjectMember& member, WORD kinds, const DISPPARAMS& parameters, VARIANT* result);
  std::atomic<int>& OutsideReferences() { return office_->ReferencesTo(kind_); }

  const std::shared_ptr<ObjectOffice> office_;
  const ObjectKind kind_;
  const std::span<const ObjectMember> members_;
  std::atomic<ULONG> references_{0};
  std::atomic<bool> isKept_{false};
};

#pragma GCC diagnostic pop

/// Keeps an object for the host.
template <typename Object>
class Kept {
 public:
  Kept() = default;
  explicit Kept(Object* object) : object_(object) { object_->Keep(); }
  ~Kept() {
    if (object_) object_->LetGo();
  }
  Kept(Kept&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  Kept& operator=(Kept&& other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }
  Object* Get() const { return object_; }

 private:
  Object* object_ = nullptr;
};

}  // namespace qcalc
