#include "platform/posix/msxml/named_node_map.h"

#include "platform/owners.h"
#include "platform/posix/msxml/attribute_set.h"
#include "platform/posix/msxml/child_cursor.h"
#include "platform/posix/msxml/guard.h"
#include "platform/posix/msxml/sequence.h"

namespace velandoc::dom {
namespace {

struct Attributes {
  xmlNode* element;
  xmlNode* First() const { return FirstAttribute(element); }
  xmlNode* Next(xmlNode* attribute) const { return NextAttribute(element, attribute); }
};

class NamedNodeMap final : public Sequence<IXMLDOMNamedNodeMap, IID_IXMLDOMNamedNodeMap> {
 public:
  NamedNodeMap(Tree& tree, xmlNode* element, IXMLDOMNode* object)
      : m_use(tree), m_object(object), m_element(element), m_cursor(tree, {element}) {}

  HRESULT STDMETHODCALLTYPE getNamedItem(BSTR name, IXMLDOMNode** item) override {
    return GiveItem(item, [&] { return Find(name); });
  }
  HRESULT STDMETHODCALLTYPE getQualifiedItem(BSTR baseName, BSTR uri, IXMLDOMNode** item) override {
    return GiveItem(item, [&] { return Find(baseName, uri); });
  }
  HRESULT STDMETHODCALLTYPE get_item(LONG index, IXMLDOMNode** item) override {
    return GiveItem(item, [&] { return m_cursor.Item(index); });
  }
  HRESULT STDMETHODCALLTYPE removeNamedItem(BSTR name, IXMLDOMNode** item) override {
    return Remove(item, [&] { return Find(name); });
  }
  HRESULT STDMETHODCALLTYPE removeQualifiedItem(BSTR baseName, BSTR uri,
                                                IXMLDOMNode** item) override {
    return Remove(item, [&] { return Find(baseName, uri); });
  }
  HRESULT STDMETHODCALLTYPE setNamedItem(IXMLDOMNode* item, IXMLDOMNode** set) override {
    if (set != nullptr) *set = nullptr;
    return Guarded([&] {
      const HRESULT result = SetAttribute(m_use.Get(), m_element, item);
      if (SUCCEEDED(result) && set != nullptr) {
        item->AddRef();
        *set = item;
      }
      return result;
    });
  }
  HRESULT STDMETHODCALLTYPE get_length(LONG* length) override {
    return Give(length, m_cursor.Length());
  }

 private:
  ~NamedNodeMap() = default;

  xmlNode* Find(BSTR name) const { return FindAttribute(m_element, Encode(name)); }
  xmlNode* Find(BSTR baseName, BSTR uri) const {
    return FindAttribute(m_element, Encode(baseName), Encode(uri));
  }

  template <class Search>
  HRESULT GiveItem(IXMLDOMNode** item, Search search) {
    if (item == nullptr) return E_INVALIDARG;
    *item = nullptr;
    return Guarded([&] { return GiveNode(m_use.Get(), search(), item, m_element); });
  }

  template <class Search>
  HRESULT Remove(IXMLDOMNode** item, Search search) {
    if (item != nullptr) *item = nullptr;
    return Guarded([&] {
      ComPtr<IXMLDOMNode> removed;
      xmlNode* const found = search();
      const HRESULT result = GiveNode(m_use.Get(), found, removed.Receive(), m_element);
      if (result != S_OK) return result;
      RemoveAttribute(m_use.Get(), m_element, found);
      if (item != nullptr) *item = removed.Detach();
      return S_OK;
    });
  }

  TreeUse m_use;
  ComPtr<IXMLDOMNode> m_object;
  xmlNode* m_element;
  ChildCursor<Attributes> m_cursor;
};

}  // namespace

HRESULT GiveAttributes(Tree& tree, xmlNode* element, IXMLDOMNode* object,
                       IXMLDOMNamedNodeMap** map) {
  if (map == nullptr) return E_INVALIDARG;
  *map = nullptr;
  return Guarded([&] {
    *map = new NamedNodeMap(tree, element, object);
    return S_OK;
  });
}

}  // namespace velandoc::dom
