// The CIM-XML export; see the header.
#include "cli/format/CimXmlFormat.h"

#include "cli/format/CimTypes.h"
#include "cli/format/XmlWriter.h"
#include "standin/ValueView.h"

using NKESTA20::TCIMReference;
using NKESTA20::TCIMValue;
using Type = TCIMValue::TCIMType;

namespace cli {

namespace {

void WriteNamespacePath(XmlWriter& xml) {
  xml.Element("LOCALNAMESPACEPATH", [&] {
    for (const char* part : {"root", "cimv2"}) xml.Element("NAMESPACE", [&] { xml.Attribute("NAME", part); });
  });
}

void WriteInstanceName(XmlWriter& xml, const TCIMReference& path);

void WriteReference(XmlWriter& xml, const TCIMReference& path) {
  xml.Element("VALUE.REFERENCE", [&] {
    xml.Element("LOCALINSTANCEPATH", [&] {
      WriteNamespacePath(xml);
      WriteInstanceName(xml, path);
    });
  });
}

void WriteKeyValue(XmlWriter& xml, const TCIMValue& value) {
  xml.Element("KEYVALUE", [&] {
    xml.Attribute("VALUETYPE", standin::TypeOf(value) == Type::kString ? "string" : "numeric");
    xml.Attribute("TYPE", CimTypeName(standin::TypeOf(value)));
    xml.Text(standin::TextOf(value));
  });
}

void WriteKeyBinding(XmlWriter& xml, const std::string& name, const TCIMValue& value) {
  xml.Element("KEYBINDING", [&] {
    xml.Attribute("NAME", name);
    if (standin::TypeOf(value) == Type::kReference) {
      WriteReference(xml, standin::ReferenceOf(value));
    } else {
      WriteKeyValue(xml, value);
    }
  });
}

void WriteInstanceName(XmlWriter& xml, const TCIMReference& path) {
  xml.Element("INSTANCENAME", [&] {
    xml.Attribute("CLASSNAME", standin::ClassNameOf(path));
    for (const auto& [name, value] : standin::KeysOf(path)) WriteKeyBinding(xml, name, value);
  });
}

void WriteScalar(XmlWriter& xml, const std::string& name, const TCIMValue& value) {
  xml.Element("PROPERTY", [&] {
    xml.Attribute("NAME", name);
    xml.Attribute("TYPE", CimTypeName(standin::TypeOf(value)));
    xml.TextElement("VALUE", standin::TextOf(value));
  });
}

void WriteArray(XmlWriter& xml, const std::string& name, const TCIMValue& value) {
  xml.Element("PROPERTY.ARRAY", [&] {
    xml.Attribute("NAME", name);
    xml.Attribute("TYPE", CimTypeName(standin::TypeOf(value)));
    xml.Element("VALUE.ARRAY", [&] {
      for (const std::string& element : standin::StringsOf(value)) xml.TextElement("VALUE", element);
    });
  });
}

void WriteReferenceProperty(XmlWriter& xml, const std::string& name, const TCIMValue& value) {
  xml.Element("PROPERTY.REFERENCE", [&] {
    xml.Attribute("NAME", name);
    xml.Attribute("REFERENCECLASS", standin::ClassNameOf(standin::ReferenceOf(value)));
    WriteReference(xml, standin::ReferenceOf(value));
  });
}

void WriteProperty(XmlWriter& xml, const std::string& name, const TCIMValue& value) {
  switch (standin::TypeOf(value)) {
    case Type::kStringArray:
      return WriteArray(xml, name, value);
    case Type::kReference:
      return WriteReferenceProperty(xml, name, value);
    default:
      return WriteScalar(xml, name, value);
  }
}

void WriteInstance(XmlWriter& xml, const std::string& className, const InstanceView& instance) {
  xml.Element("VALUE.NAMEDOBJECT", [&] {
    WriteInstanceName(xml, instance.Path());
    xml.Element("INSTANCE", [&] {
      xml.Attribute("CLASSNAME", className);
      for (const auto& [name, property] : instance.Properties()) WriteProperty(xml, name, property->Value());
    });
  });
}

void WriteGroup(XmlWriter& xml, const Inventory& inventory) {
  xml.Element("DECLGROUP.WITHNAME", [&] {
    WriteNamespacePath(xml);
    for (const ClassView& view : inventory.Classes()) {
      for (const InstanceView& instance : view.instances) WriteInstance(xml, view.schema.name, instance);
    }
  });
}

}  // namespace

std::string RenderCimXml(const Inventory& inventory, const RenderOptions&) {
  XmlWriter xml;
  xml.Element("CIM", [&] {
    xml.Attribute("CIMVERSION", "2.0");
    xml.Attribute("DTDVERSION", "2.4");
    xml.Element("DECLARATION", [&] { WriteGroup(xml, inventory); });
  });
  return xml.Finish();
}

}  // namespace cli
