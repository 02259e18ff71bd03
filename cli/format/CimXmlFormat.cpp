#include "cli/format/CimXmlFormat.h"

#include <optional>

#include "cli/format/XmlWriter.h"
#include "cli/model/Inventory.h"
#include "cli/model/ObjectPath.h"
#include "schema/CimTypes.h"

using schema::PropertySchema;

namespace cli {

namespace {

void WriteNamespacePath(XmlWriter& xml) {
  xml.Element("LOCALNAMESPACEPATH", [&] {
    for (const char* part : {"root", "cimv2"}) xml.Element("NAMESPACE", [&] { xml.Attribute("NAME", part); });
  });
}

template <typename Body>
void WriteKeyBinding(XmlWriter& xml, const PropertySchema& key, Body body) {
  xml.Element("KEYBINDING", [&] {
    xml.Attribute("NAME", key.name);
    body();
  });
}

void WriteKeyValue(XmlWriter& xml, const PropertySchema& key, const std::string& value) {
  WriteKeyBinding(xml, key, [&] {
    xml.Element("KEYVALUE", [&] {
      xml.Attribute("VALUETYPE", "string");
      xml.Attribute("TYPE", schema::CimTypeName(key.type));
      xml.Text(value);
    });
  });
}

void WriteEntityName(XmlWriter& xml, const ObjectPath& path) {
  xml.Element("INSTANCENAME", [&] {
    xml.Attribute("CLASSNAME", path.schema->name);
    auto value = path.keys.begin();
    for (const PropertySchema& property : path.schema->properties) {
      if (property.isKey) WriteKeyValue(xml, property, *value++);
    }
  });
}

void WriteReference(XmlWriter& xml, const Reference& reference) {
  const std::optional<ObjectPath> path = ParseObjectPath(reference.path);
  xml.Element("VALUE.REFERENCE", [&] {
    xml.Element("LOCALINSTANCEPATH", [&] {
      WriteNamespacePath(xml);
      WriteEntityName(xml, path.value());
    });
  });
}

void WriteInstanceName(XmlWriter& xml, const Item& item) {
  xml.Element("INSTANCENAME", [&] {
    xml.Attribute("CLASSNAME", item.Schema().name);
    for (const PropertySchema& property : item.Schema().properties) {
      if (!property.isKey) continue;
      if (const auto* const reference = std::get_if<Reference>(&item.Get(property.id))) {
        WriteKeyBinding(xml, property, [&] { WriteReference(xml, *reference); });
      } else {
        WriteKeyValue(xml, property, item.String(property.id));
      }
    }
  });
}

/// Writes a property with the elements that its type needs; the value must be present.
struct PropertyWriter {
  XmlWriter& xml;
  const PropertySchema& property;

  void operator()(std::monostate) const {}
  void operator()(std::uint64_t number) const { WriteScalar(std::to_string(number)); }
  void operator()(const std::string& text) const { WriteScalar(text); }
  void operator()(const std::vector<std::string>& texts) const {
    xml.Element("PROPERTY.ARRAY", [&] {
      WriteNameAndType();
      xml.Element("VALUE.ARRAY", [&] {
        for (const std::string& text : texts) xml.TextElement("VALUE", text);
      });
    });
  }
  void operator()(const Reference& reference) const {
    xml.Element("PROPERTY.REFERENCE", [&] {
      xml.Attribute("NAME", property.name);
      xml.Attribute("REFERENCECLASS", ParseObjectPath(reference.path).value().schema->name);
      WriteReference(xml, reference);
    });
  }

 private:
  void WriteScalar(const std::string& text) const {
    xml.Element("PROPERTY", [&] {
      WriteNameAndType();
      xml.TextElement("VALUE", text);
    });
  }
  void WriteNameAndType() const {
    xml.Attribute("NAME", property.name);
    xml.Attribute("TYPE", schema::CimTypeName(property.type));
  }
};

void WriteItem(XmlWriter& xml, const Item& item) {
  xml.Element("VALUE.NAMEDOBJECT", [&] {
    WriteInstanceName(xml, item);
    xml.Element("INSTANCE", [&] {
      xml.Attribute("CLASSNAME", item.Schema().name);
      for (const PropertySchema& property : item.Schema().properties) {
        std::visit(PropertyWriter{xml, property}, item.Get(property.id));
      }
    });
  });
}

void WriteGroup(XmlWriter& xml, const Inventory& inventory) {
  xml.Element("DECLGROUP.WITHNAME", [&] {
    WriteNamespacePath(xml);
    for (const ItemsOfClass& ofClass : inventory.Classes()) {
      for (const Item& item : ofClass.items) WriteItem(xml, item);
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
