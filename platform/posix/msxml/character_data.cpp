#include "platform/posix/msxml/character_data.h"

#include "platform/owners.h"

namespace velandoc::dom {

template <>
bool AnswersTo<IXMLDOMText>(REFIID riid) {
  return riid == IID_IXMLDOMText || riid == IID_IXMLDOMCharacterData;
}

template <>
bool AnswersTo<IXMLDOMCDATASection>(REFIID riid) {
  return riid == IID_IXMLDOMCDATASection || AnswersTo<IXMLDOMText>(riid);
}

template <>
bool AnswersTo<IXMLDOMComment>(REFIID riid) {
  return riid == IID_IXMLDOMComment || riid == IID_IXMLDOMCharacterData;
}

template <>
bool AnswersTo<IXMLDOMProcessingInstruction>(REFIID riid) {
  return riid == IID_IXMLDOMProcessingInstruction;
}

namespace {

Bstr DataOf(const DomNode& node) {
  Bstr data;
  *data.Receive() = Decode(View(node.Get()->content));
  return data;
}

bool IsInside(WideView data, LONG offset, LONG count) {
  return offset >= 0 && count >= 0 && static_cast<std::size_t>(offset) <= data.size();
}

HRESULT Put(DomNode& node, const WideString& data) { return node.put_text(Bstr(data).Get()); }

}  // namespace

HRESULT CharacterData::GetLength(DomNode& node, LONG* length) {
  if (length == nullptr) return E_INVALIDARG;
  return Guarded([&] { return Give(length, static_cast<LONG>(DataOf(node).View().size())); });
}

HRESULT CharacterData::Substring(DomNode& node, LONG offset, LONG count, BSTR* data) {
  if (data == nullptr) return E_INVALIDARG;
  *data = nullptr;
  return Guarded([&] {
    const Bstr whole = DataOf(node);
    if (!IsInside(whole.View(), offset, count)) return E_INVALIDARG;
    *data =
        Bstr(whole.View().substr(static_cast<std::size_t>(offset), static_cast<std::size_t>(count)))
            .Detach();
    return S_OK;
  });
}

HRESULT CharacterData::Replace(DomNode& node, LONG offset, LONG count, BSTR data) {
  return Guarded([&] {
    WideString whole = DataOf(node).Text();
    if (!IsInside(whole, offset, count)) return E_INVALIDARG;
    const WideView put = data == nullptr ? WideView() : WideView(data, SysStringLen(data));
    whole.replace(static_cast<std::size_t>(offset), static_cast<std::size_t>(count), put);
    return Put(node, whole);
  });
}

HRESULT CharacterData::Append(DomNode& node, BSTR data) {
  return Guarded([&] {
    WideString whole = DataOf(node).Text();
    if (data != nullptr) whole.append(data, SysStringLen(data));
    return Put(node, whole);
  });
}

}  // namespace velandoc::dom
