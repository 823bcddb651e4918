// Objects for texts, CDATA sections, comments and processing instructions.
#pragma once

#include "platform/posix/msxml/contained_node.h"

namespace velandoc::dom {

/// The part of IXMLDOMCharacterData that does not depend on the kind. Offsets and counts are in
/// UTF-16 units; E_INVALIDARG for those outside the text, though a count may reach past its end.
/// Each takes time in proportion to the whole text.
class CharacterData {
 public:
  static HRESULT GetLength(DomNode& node, LONG* length);
  static HRESULT Substring(DomNode& node, LONG offset, LONG count, BSTR* data);
  /// Puts `data` in the place of `count` units; null is empty text.
  static HRESULT Replace(DomNode& node, LONG offset, LONG count, BSTR data);
  static HRESULT Append(DomNode& node, BSTR data);
};

template <class Interface>
class CharacterDataNode : public ContainedNode<Interface> {
 public:
  CharacterDataNode(Tree& tree, xmlNode* node) : ContainedNode<Interface>(tree, node) {}

  HRESULT STDMETHODCALLTYPE get_data(BSTR* data) override {
    return GiveText(data, View(this->Get()->content));
  }
  HRESULT STDMETHODCALLTYPE put_data(BSTR data) override { return DomNode::put_text(data); }
  HRESULT STDMETHODCALLTYPE get_length(LONG* length) override {
    return CharacterData::GetLength(*this, length);
  }
  HRESULT STDMETHODCALLTYPE substringData(LONG offset, LONG count, BSTR* data) override {
    return CharacterData::Substring(*this, offset, count, data);
  }
  HRESULT STDMETHODCALLTYPE appendData(BSTR data) override {
    return CharacterData::Append(*this, data);
  }
  HRESULT STDMETHODCALLTYPE insertData(LONG offset, BSTR data) override {
    return CharacterData::Replace(*this, offset, 0, data);
  }
  HRESULT STDMETHODCALLTYPE deleteData(LONG offset, LONG count) override {
    return CharacterData::Replace(*this, offset, count, nullptr);
  }
  HRESULT STDMETHODCALLTYPE replaceData(LONG offset, LONG count, BSTR data) override {
    return CharacterData::Replace(*this, offset, count, data);
  }
};

/// IXMLDOMText and IXMLDOMCDATASection. splitText is E_NOTIMPL.
template <class Interface>
class TextNode final : public CharacterDataNode<Interface> {
 public:
  using CharacterDataNode<Interface>::CharacterDataNode;
  HRESULT STDMETHODCALLTYPE splitText(LONG, IXMLDOMText** rest) override {
    if (rest != nullptr) *rest = nullptr;
    return E_NOTIMPL;
  }
};

using Text = TextNode<IXMLDOMText>;
using Section = TextNode<IXMLDOMCDATASection>;

class Comment final : public CharacterDataNode<IXMLDOMComment> {
 public:
  using CharacterDataNode::CharacterDataNode;
};

class Instruction final : public ContainedNode<IXMLDOMProcessingInstruction> {
 public:
  Instruction(Tree& tree, xmlNode* node) : ContainedNode(tree, node) {}

  HRESULT STDMETHODCALLTYPE get_target(BSTR* target) override {
    return DomNode::get_nodeName(target);
  }
  HRESULT STDMETHODCALLTYPE get_data(BSTR* data) override { return DomNode::get_text(data); }
  HRESULT STDMETHODCALLTYPE put_data(BSTR data) override { return DomNode::put_text(data); }
};

}  // namespace velandoc::dom
