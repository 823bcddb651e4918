// One row of an interface's dispatch table: a member's name, number, kind and arguments, with the
// code that calls it.
//
// The types of the arguments are read off the member function's own type, so a row names only what
// that does not say:
//
//   template <>
//   struct DispatchTable<ISample> {
//     static constexpr DispatchMember kMembers[] = {
//         Method<&ISample::Open>(OLESTR("Open"), 1, {OLESTR("URL"), Optional(OLESTR("Mode"))}),
//         Function<&ISample::Count>(OLESTR("Count"), 2, {Default(OLESTR("First"), 1)}),
//         Get<&ISample::get_Name>(OLESTR("Name"), 3),
//         Put<&ISample::put_Name>(OLESTR("Name"), 3),
//     };
//   };
//
// 16-bit numbers are VARIANT_BOOL: the two are one C++ type, and no interface here has the other. A
// double is VT_R8; a member that returns a date says so: Get<&ISample::get_Changed, VT_DATE>(...).
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <initializer_list>
#include <tuple>
#include <type_traits>
#include <utility>

#include "platform/com.h"

namespace velandoc {

inline constexpr std::size_t kMaxDispatchArguments = 10;

/// What a member gets for an argument that was left out.
struct DispatchArgument {
  enum class Absence {
    kRequired,
    kMissing,  // a VARIANT with VT_ERROR and DISP_E_PARAMNOTFOUND
    kNumber,
    kText,
  };

  constexpr DispatchArgument() = default;
  // Not explicit: a name alone is a required argument.
  constexpr DispatchArgument(LPCOLESTR argumentName) : name(argumentName) {}

  LPCOLESTR name = nullptr;
  Absence absence = Absence::kRequired;
  LONG number = 0;
  LPCOLESTR text = nullptr;
};

/// An argument of type VARIANT that may be left out.
constexpr DispatchArgument Optional(LPCOLESTR name) {
  DispatchArgument argument(name);
  argument.absence = DispatchArgument::Absence::kMissing;
  return argument;
}

/// With a default value: a number (also of an enumeration, or VARIANT_TRUE), or a text.
constexpr DispatchArgument Default(LPCOLESTR name, LONG number) {
  DispatchArgument argument(name);
  argument.absence = DispatchArgument::Absence::kNumber;
  argument.number = number;
  return argument;
}
constexpr DispatchArgument Default(LPCOLESTR name, LPCOLESTR text) {
  DispatchArgument argument(name);
  argument.absence = DispatchArgument::Absence::kText;
  argument.text = text;
  return argument;
}

/// What a parameter takes: a value of this type, or a pointer to one. `iid` for an interface.
struct DispatchType {
  VARTYPE type = VT_EMPTY;
  bool isByRef = false;
  const IID* iid = nullptr;
};

template <class T>
constexpr DispatchType ValueTypeOf() {
  if constexpr (std::is_enum_v<T> || std::is_same_v<T, LONG>) {
    return {VT_I4, false, nullptr};
  } else if constexpr (std::is_same_v<T, VARIANT_BOOL>) {
    return {VT_BOOL, false, nullptr};
  } else if constexpr (std::is_same_v<T, BYTE>) {
    return {VT_UI1, false, nullptr};
  } else if constexpr (std::is_same_v<T, USHORT>) {
    return {VT_UI2, false, nullptr};
  } else if constexpr (std::is_same_v<T, ULONG>) {
    return {VT_UI4, false, nullptr};
  } else if constexpr (std::is_same_v<T, LONGLONG>) {
    return {VT_I8, false, nullptr};
  } else if constexpr (std::is_same_v<T, ULONGLONG>) {
    return {VT_UI8, false, nullptr};
  } else if constexpr (std::is_same_v<T, FLOAT>) {
    return {VT_R4, false, nullptr};
  } else if constexpr (std::is_same_v<T, DOUBLE>) {
    return {VT_R8, false, nullptr};
  } else if constexpr (std::is_same_v<T, CY>) {
    return {VT_CY, false, nullptr};
  } else if constexpr (std::is_same_v<T, BSTR>) {
    return {VT_BSTR, false, nullptr};
  } else if constexpr (std::is_same_v<T, VARIANT>) {
    return {VT_VARIANT, false, nullptr};
  } else {
    static_assert(std::is_pointer_v<T>, "no Automation type");
    using Interface = std::remove_pointer_t<T>;
    static_assert(std::is_base_of_v<IUnknown, Interface>, "no Automation type");
    constexpr bool isDispatch = std::is_base_of_v<IDispatch, Interface>;
    return {isDispatch ? VT_DISPATCH : VT_UNKNOWN, false, &UuidOf<Interface>::value};
  }
}

template <class T>
inline constexpr bool kIsInterface = false;
template <class T>
inline constexpr bool kIsInterface<T*> = std::is_base_of_v<IUnknown, T>;

/// A pointer that is neither a BSTR nor an interface is a reference to its target.
template <class T>
constexpr DispatchType ParameterTypeOf() {
  if constexpr (std::is_pointer_v<T> && !std::is_same_v<T, BSTR> && !kIsInterface<T>) {
    DispatchType type = ValueTypeOf<std::remove_pointer_t<T>>();
    type.isByRef = true;
    return type;
  } else {
    return ValueTypeOf<T>();
  }
}

/// The value of an argument that was brought to the parameter's type before.
template <class T>
T ArgumentAs(const VARIANT& argument) {
  if constexpr (std::is_same_v<T, VARIANT>) {
    return argument;
  } else if constexpr (kIsInterface<T>) {
    return static_cast<T>(argument.byref);
  } else if constexpr (std::is_pointer_v<T>) {
    // Also for a BSTR, which is a pointer in the same place.
    return static_cast<T>(argument.byref);
  } else {
    T value;
    static_assert(sizeof value <= sizeof argument.llVal);
    std::memcpy(&value, &argument.llVal, sizeof value);
    return value;
  }
}

/// Puts a member's result into a VARIANT that holds nothing.
template <class R>
void StoreResult(const R& value, VARTYPE type, VARIANT& result) {
  if constexpr (std::is_same_v<R, VARIANT>) {
    result = value;
  } else {
    static_assert(sizeof value <= sizeof result.llVal);
    std::memcpy(&result.llVal, &value, sizeof value);
    result.vt = type;
  }
}

/// `object` is the interface of the table; `arguments` are of the parameters' types, in their
/// order. `result` is set whenever the member has one, also when it fails.
using DispatchThunk = HRESULT (*)(void* object, const VARIANT* arguments, VARIANT& result);

struct DispatchMember {
  LPCOLESTR name = nullptr;
  DISPID id = DISPID_UNKNOWN;
  WORD kind = 0;
  std::size_t count = 0;  // of arguments, without a result
  std::array<DispatchArgument, kMaxDispatchArguments> arguments{};
  std::array<DispatchType, kMaxDispatchArguments> types{};
  DispatchType result{};  // VT_EMPTY for a member without one
  DispatchThunk call = nullptr;
};

template <class I>
struct DispatchTable;

template <auto member, VARTYPE resultType>
struct DispatchSignature;

template <class I, class... Args, HRESULT (I::*member)(Args...), VARTYPE resultType>
struct DispatchSignature<member, resultType> {
  using Tuple = std::tuple<Args...>;
  static constexpr std::size_t kCount = sizeof...(Args);

  static HRESULT Call(void* object, const VARIANT* arguments, VARIANT&) {
    return [&]<std::size_t... at>(std::index_sequence<at...>) {
      return (static_cast<I*>(object)->*member)(
          ArgumentAs<std::tuple_element_t<at, Tuple>>(arguments[at])...);
    }
    (std::make_index_sequence<kCount>());
  }

  /// Only for a member with a result.
  static constexpr DispatchType ResultType() {
    DispatchType type =
        ValueTypeOf<std::remove_pointer_t<std::tuple_element_t<kCount - 1, Tuple>>>();
    if (resultType != VT_EMPTY) type.type = resultType;
    return type;
  }

  static HRESULT CallForResult(void* object, const VARIANT* arguments, VARIANT& result) {
    using Result = std::remove_pointer_t<std::tuple_element_t<kCount - 1, Tuple>>;
    constexpr bool isVariant = std::is_same_v<Result, VARIANT>;
    constexpr VARTYPE type = ResultType().type;
    Result value{};
    const HRESULT returned = [&]<std::size_t... at>(std::index_sequence<at...>) {
      return (static_cast<I*>(object)->*member)(
          ArgumentAs<std::tuple_element_t<at, Tuple>>(arguments[at])..., &value);
    }
    (std::make_index_sequence<kCount - 1>());
    StoreResult(value, isVariant ? VARTYPE{VT_EMPTY} : type, result);
    return returned;
  }

  template <bool hasResult>
  static constexpr DispatchMember Row(LPCOLESTR name, DISPID id, WORD kind,
                                      std::initializer_list<DispatchArgument> arguments) {
    constexpr std::size_t kArguments = kCount - (hasResult ? 1 : 0);
    static_assert(kArguments <= kMaxDispatchArguments);
    DispatchMember row;
    row.name = name;
    row.id = id;
    row.kind = kind;
    row.count = kArguments;
    // The value that a property is set to has no name. A throw here is a row that does not fit its
    // member.
    if (arguments.size() != kArguments - (kind == DISPATCH_PROPERTYPUT ? 1 : 0)) throw name;
    std::copy(arguments.begin(), arguments.end(), row.arguments.begin());
    [&]<std::size_t... at>(std::index_sequence<at...>) {
      ((row.types[at] = ParameterTypeOf<std::tuple_element_t<at, Tuple>>()), ...);
    }
    (std::make_index_sequence<kArguments>());
    if constexpr (hasResult) {
      row.result = ResultType();
      row.call = &CallForResult;
    } else {
      row.call = &Call;
    }
    return row;
  }
};

using DispatchArguments = std::initializer_list<DispatchArgument>;

/// A method without a result.
template <auto member>
constexpr DispatchMember Method(LPCOLESTR name, DISPID id, DispatchArguments arguments = {}) {
  return DispatchSignature<member, VT_EMPTY>::template Row<false>(name, id, DISPATCH_METHOD,
                                                                  arguments);
}

/// A method whose last parameter is its result.
template <auto member, VARTYPE resultType = VT_EMPTY>
constexpr DispatchMember Function(LPCOLESTR name, DISPID id, DispatchArguments arguments = {}) {
  return DispatchSignature<member, resultType>::template Row<true>(name, id, DISPATCH_METHOD,
                                                                   arguments);
}

template <auto member, VARTYPE resultType = VT_EMPTY>
constexpr DispatchMember Get(LPCOLESTR name, DISPID id, DispatchArguments arguments = {}) {
  return DispatchSignature<member, resultType>::template Row<true>(name, id, DISPATCH_PROPERTYGET,
                                                                   arguments);
}

template <auto member>
constexpr DispatchMember Put(LPCOLESTR name, DISPID id, DispatchArguments arguments = {}) {
  return DispatchSignature<member, VT_EMPTY>::template Row<false>(name, id, DISPATCH_PROPERTYPUT,
                                                                  arguments);
}

}  // namespace velandoc
