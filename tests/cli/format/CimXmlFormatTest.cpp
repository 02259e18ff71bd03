// The CIM-XML export, read back: valid against the document type, every property and key of the right type,
// and references nested the way other programs expect.
#include <gmock/gmock.h>

#include <map>
#include <string>
#include <vector>

#include "cli/format/CimXmlFormat.h"
#include "cli/format/RenderOptions.h"
#include "cli/format/XmlWriter.h"
#include "tests/cli/support/CliTest.h"
#include "tests/cli/support/XmlDocument.h"

using NKESTA20::TCIMValue;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using namespace std::string_literals;

namespace usbinfo_test {
namespace {

using Strings = std::vector<std::string>;

class CimXmlFormatTest : public CliTest {
 protected:
  std::string Render() const { return cli::RenderCimXml(Collected(), {}); }
  XmlDocument Parse() const { return XmlDocument(Render()); }
};

/// The instances of a class.
std::string Instances(const std::string& className) {
  return "//VALUE.NAMEDOBJECT/INSTANCE[@CLASSNAME='" + className + "']";
}

/// Element and type of a property as "ELEMENT TYPE", once for each way in which it occurs.
Strings FormsOf(const XmlDocument& document, const std::string& className, const std::string& property) {
  Strings forms;
  for (const char* element : {"PROPERTY", "PROPERTY.ARRAY", "PROPERTY.REFERENCE"}) {
    const std::string path = Instances(className) + "/" + element + "[@NAME='" + property + "']";
    std::map<std::string, int> types;
    for (const std::string& type : document.Select(path + "/@TYPE | " + path + "/@REFERENCECLASS"))
      ++types[type];
    for (const auto& type : types) forms.push_back(element + (" " + type.first));
  }
  return forms;
}

struct PropertyForm {
  const char* className;
  const char* property;
  const char* form;
};

std::vector<PropertyForm> FormsOfAllClasses() {
  std::vector<PropertyForm> forms = {
      {"KALDO_USBController", "InterfaceType", "PROPERTY uint16"},
      {"KALDO_USBController", "Description", "PROPERTY string"},
      {"KALDO_USBHub", "NumberOfPorts", "PROPERTY uint8"},
      {"KALDO_USBDevice", "Speed", "PROPERTY uint8"},
      {"KALDO_USBPort", "HubDepth", "PROPERTY uint16"},
      {"KALDO_USBPort", "HubName", "PROPERTY string"},
      {"KALDO_USBPort", "Name", "PROPERTY string"},
      {"KALDO_USBPort", "PortNumber", "PROPERTY string"},
      {"KALDO_USBPort", "Speed", "PROPERTY uint64"},
      {"KALDO_USBPort", "StatusDescriptions", "PROPERTY.ARRAY string"},
      {"KALDO_USBPortOnHub", "Antecedent", "PROPERTY.REFERENCE KALDO_USBHub"},
      {"KALDO_USBPortOnHub", "Dependent", "PROPERTY.REFERENCE KALDO_USBPort"},
      {"KALDO_USBConnection", "Antecedent", "PROPERTY.REFERENCE KALDO_USBPort"},
  };
  for (const char* name : {"KALDO_USBHub", "KALDO_USBDevice"}) {
    for (const char* text :
         {"Description", "Name", "HubName", "PortNumber", "Manufacturer", "SerialNumber"}) {
      forms.push_back({name, text, "PROPERTY string"});
    }
    for (const char* word : {"USBVersion", "VendorID", "USBDeviceID", "HubDepth"}) {
      forms.push_back({name, word, "PROPERTY uint16"});
    }
    for (const char* byte : {"ClassCode", "SubclassCode", "ProtocolCode", "NumberOfConfigs"}) {
      forms.push_back({name, byte, "PROPERTY uint8"});
    }
  }
  for (const char* name : {"KALDO_USBController", "KALDO_USBHub", "KALDO_USBPort", "KALDO_USBDevice"}) {
    for (const char* key : {"CreationClassName", "DeviceID", "SystemCreationClassName", "SystemName"}) {
      forms.push_back({name, key, "PROPERTY string"});
    }
  }
  return forms;
}

TEST_F(CimXmlFormatTest, GivesEveryPropertyOfEveryClassItsType) {
  Collect(ReadFile(CapturePath("vm-desktop-debugfs")));
  const XmlDocument document = Parse();
  for (const PropertyForm& row : FormsOfAllClasses()) {
    EXPECT_THAT(FormsOf(document, row.className, row.property), ElementsAre(row.form))
        << row.className << " " << row.property;
  }
  EXPECT_THAT(FormsOf(document, "KALDO_USBConnection", "Dependent"),
              ElementsAre("PROPERTY.REFERENCE KALDO_USBDevice", "PROPERTY.REFERENCE KALDO_USBHub"));
}

TEST_F(CimXmlFormatTest, HasNoPropertyBeyondThoseOfTheClasses) {
  Collect(ReadFile(CapturePath("vm-desktop-debugfs")));
  const XmlDocument document = Parse();
  std::size_t known = document.Count(Instances("KALDO_USBConnection") + "/*[@NAME='Dependent']");
  for (const PropertyForm& row : FormsOfAllClasses()) {
    known += document.Count(Instances(row.className) + "/*[@NAME='" + row.property + "']");
  }
  EXPECT_EQ(document.Count("//INSTANCE/*"), known);
}

TEST_F(CimXmlFormatTest, IsValidAgainstTheDocumentTypeForEveryCapture) {
  for (const std::string& path : CapturePaths()) {
    host.Reset();
    host.SetSystemName("testhost");
    Collect(ReadFile(path));
    EXPECT_TRUE(Parse().IsValidCim()) << path;
  }
}

TEST_F(CimXmlFormatTest, IsValidForAnEmptyInventory) {
  const XmlDocument document = Parse();
  EXPECT_TRUE(document.IsValidCim());
  EXPECT_EQ(document.Count("/CIM/DECLARATION/DECLGROUP.WITHNAME"), 1U);
  EXPECT_EQ(document.Count("//VALUE.NAMEDOBJECT"), 0U);
}

TEST(CimDocumentType, RefusesWhatIsOutOfOrderMissingOrMistyped) {
  const auto isValid = [](const std::string& object) {
    return XmlDocument("<CIM CIMVERSION='2.0' DTDVERSION='2.4'><DECLARATION><DECLGROUP.WITHNAME>" + object +
                       "</DECLGROUP.WITHNAME></DECLARATION></CIM>")
        .IsValidCim();
  };
  const std::string name = "<INSTANCENAME CLASSNAME='A'/>";
  EXPECT_TRUE(isValid("<VALUE.NAMEDOBJECT>" + name + "<INSTANCE CLASSNAME='A'/></VALUE.NAMEDOBJECT>"));
  EXPECT_FALSE(isValid("<VALUE.NAMEDOBJECT><INSTANCE CLASSNAME='A'/>" + name + "</VALUE.NAMEDOBJECT>"));
  EXPECT_FALSE(isValid("<VALUE.NAMEDOBJECT>" + name + "</VALUE.NAMEDOBJECT>"));
  EXPECT_FALSE(isValid("<VALUE.NAMEDOBJECT>" + name +
                       "<INSTANCE CLASSNAME='A'><PROPERTY NAME='B' TYPE='reference'/></INSTANCE>"
                       "</VALUE.NAMEDOBJECT>"));
}

TEST_F(CimXmlFormatTest, DeclaresOneGroupOfTheNamespace) {
  Collect(ReadFile(CapturePath("proc-manufacturer-keyword")));
  const XmlDocument document = Parse();
  EXPECT_THAT(Render(), testing::StartsWith("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"));
  EXPECT_THAT(document.Select("/CIM/@CIMVERSION"), ElementsAre("2.0"));
  EXPECT_THAT(document.Select("/CIM/@DTDVERSION"), ElementsAre(testing::StartsWith("2.4")));
  EXPECT_THAT(document.Select("/CIM/DECLARATION/DECLGROUP.WITHNAME/LOCALNAMESPACEPATH/NAMESPACE/@NAME"),
              ElementsAre("root", "cimv2"));
}

TEST_F(CimXmlFormatTest, NamesAnEntityByItsFourTypedKeys) {
  Collect(ReadFile(CapturePath("proc-manufacturer-keyword")));
  const XmlDocument document = Parse();
  const std::string name = "//VALUE.NAMEDOBJECT/INSTANCENAME[@CLASSNAME='KALDO_USBDevice']";
  EXPECT_EQ(document.Count(name), 1U);
  EXPECT_THAT(document.Select(name + "/KEYBINDING/@NAME"),
              ElementsAre("CreationClassName", "DeviceID", "SystemCreationClassName", "SystemName"));
  EXPECT_THAT(document.Select(name + "/KEYBINDING/KEYVALUE"),
              ElementsAre("KALDO_USBDevice", "Bus 01  Device   4", "KALDO_ComputerSystem", "testhost"));
  EXPECT_THAT(document.Select(name + "/KEYBINDING/KEYVALUE/@VALUETYPE"),
              ElementsAre("string", "string", "string", "string"));
  EXPECT_THAT(document.Select(name + "/KEYBINDING/KEYVALUE/@TYPE"),
              ElementsAre("string", "string", "string", "string"));
}

TEST_F(CimXmlFormatTest, NamesAnAssociationByTwoReferences) {
  Path port = AddPort("port", 1, "x");
  Path device = AddDevice("device", "", 1);
  Associate("KALDO_USBConnection", port, device);
  const XmlDocument document = Parse();
  const std::string name = "//VALUE.NAMEDOBJECT/INSTANCENAME[@CLASSNAME='KALDO_USBConnection']";
  const std::string path = name + "/KEYBINDING/VALUE.REFERENCE/LOCALINSTANCEPATH";
  EXPECT_THAT(document.Select(name + "/KEYBINDING/@NAME"), ElementsAre("Antecedent", "Dependent"));
  EXPECT_THAT(document.Select(path + "/LOCALNAMESPACEPATH/NAMESPACE/@NAME"),
              ElementsAre("root", "cimv2", "root", "cimv2"));
  EXPECT_THAT(document.Select(path + "/INSTANCENAME/@CLASSNAME"),
              ElementsAre("KALDO_USBPort", "KALDO_USBDevice"));
  EXPECT_THAT(document.Select(path + "/INSTANCENAME/KEYBINDING[@NAME='DeviceID']/KEYVALUE"),
              ElementsAre("port", "device"));
}

TEST_F(CimXmlFormatTest, WritesAReferencePropertyAsALocalInstancePath) {
  Path hub = AddHub("hub", "", 1);
  Path port = AddPort("port", 1, "x");
  Associate("KALDO_USBPortOnHub", hub, port);
  const XmlDocument document = Parse();
  const std::string property = Instances("KALDO_USBPortOnHub") + "/PROPERTY.REFERENCE";
  EXPECT_THAT(document.Select(property + "/@NAME"), ElementsAre("Antecedent", "Dependent"));
  EXPECT_THAT(document.Select(property + "/@REFERENCECLASS"), ElementsAre("KALDO_USBHub", "KALDO_USBPort"));
  EXPECT_EQ(document.Count(property + "/VALUE.REFERENCE/LOCALINSTANCEPATH/*"), 4U);
  const std::string path = property + "[@NAME='Dependent']/VALUE.REFERENCE/LOCALINSTANCEPATH";
  EXPECT_THAT(document.Select(path + "/*[1][self::LOCALNAMESPACEPATH]/NAMESPACE/@NAME"),
              ElementsAre("root", "cimv2"));
  EXPECT_THAT(document.Select(path + "/*[2][self::INSTANCENAME]/KEYBINDING/KEYVALUE"),
              ElementsAre("KALDO_USBPort", "port", "KALDO_ComputerSystem", "testhost"));
}

TEST_F(CimXmlFormatTest, WritesValuesUnchanged) {
  AddPort("Bus 01  Device   1 Port 00", 18446744073709551615UL, "No device connected");
  const XmlDocument document = Parse();
  EXPECT_THAT(document.Select("//PROPERTY[@NAME='DeviceID']/VALUE"),
              ElementsAre("Bus 01  Device   1 Port 00"));
  EXPECT_THAT(document.Select("//PROPERTY[@NAME='Speed']/VALUE"), ElementsAre("18446744073709551615"));
  EXPECT_THAT(document.Select("//PROPERTY.ARRAY/VALUE.ARRAY/VALUE"), ElementsAre("No device connected"));
}

TEST_F(CimXmlFormatTest, WritesEveryElementOfAnArrayByItself) {
  CommitEntity("KALDO_USBPort", "port",
               {{"StatusDescriptions", TCIMValue(TCIMValue::TCIMType::kStringArray, 3,
                                                 {TCIMValue("a, b"), TCIMValue(""), TCIMValue("c")})}});
  EXPECT_THAT(Parse().Select("//PROPERTY.ARRAY[@NAME='StatusDescriptions']/VALUE.ARRAY/VALUE"),
              ElementsAre("a, b", "", "c"));
}

TEST_F(CimXmlFormatTest, HoldsNothingNullAndNoPropertyCutShort) {
  AddDevice("device", "", 1);
  Collect(ReadFile(CapturePath("vm-desktop-debugfs")));
  const std::string text = Render();
  const XmlDocument document(text);
  EXPECT_EQ(document.Count("//PROPERTY[count(VALUE)!=1] | //PROPERTY.ARRAY[count(VALUE.ARRAY)!=1] | "
                           "//PROPERTY.REFERENCE[count(VALUE.REFERENCE)!=1] | //VALUE.NULL"),
            0U);
  EXPECT_THAT(text, Not(HasSubstr("/>")));
  EXPECT_THAT(document.Select("//INSTANCE[PROPERTY[@NAME='DeviceID']/VALUE='device']/PROPERTY[@NAME="
                              "'Description']/VALUE"),
              ElementsAre(""));
  EXPECT_THAT(text, HasSubstr("<VALUE></VALUE>"));
}

TEST_F(CimXmlFormatTest, KeepsClassesInstancesAndPropertiesInOrder) {
  AddDevice("z", "", 1);
  AddDevice("a", "", 1);
  AddController("c", "");
  EXPECT_THAT(Parse().Select("//INSTANCE/PROPERTY[@NAME='DeviceID']/VALUE"), ElementsAre("c", "z", "a"));
  EXPECT_THAT(
      Parse().Select("//VALUE.NAMEDOBJECT[1]/INSTANCE/PROPERTY/@NAME"),
      ElementsAre("CreationClassName", "Description", "DeviceID", "SystemCreationClassName", "SystemName"));
}

TEST_F(CimXmlFormatTest, ReplacesWhatXmlForbidsAndKeepsTheRest) {
  const std::string odd =
      "<&>\"']]>\t\n\r|\0\x01\x1B\x1F|\x7F\xC2\x9B|\xFF|\xEF\xBF\xBE\xEF\xBF\xBF|\xC3\xA9"s;
  AddDevice("device", odd, 1);
  const std::string bad = "\xEF\xBF\xBD";
  const std::string fit =
      "<&>\"']]>\t\n\r|" + bad + bad + bad + bad + "|\x7F\xC2\x9B|" + bad + "|" + bad + bad + "|\xC3\xA9";
  EXPECT_THAT(Parse().Select("//PROPERTY[@NAME='Description']/VALUE"), ElementsAre(fit));
}

TEST_F(CimXmlFormatTest, WritesControlCharactersAsReferences) {
  AddDevice("device", "\x7F\xC2\x80\xC2\x9F\xC2\xA0", 1);
  EXPECT_THAT(Render(), HasSubstr("<VALUE>&#x7F;&#x80;&#x9F;\xC2\xA0</VALUE>"));
}

TEST_F(CimXmlFormatTest, WritesEveryOtherUnprintableCharacterAsAReference) {
  const std::string text =
      "\xD8\x9C\xE2\x80\x8E\xE2\x80\xA8\xE2\x80\xAE\xE2\x81\xA9|\xE2\x80\x8D\xF3\xA0\x81\x81\xE2\x82\xAC";
  AddDevice("device", text, 1);
  EXPECT_THAT(
      Render(),
      HasSubstr("<VALUE>&#x61C;&#x200E;&#x2028;&#x202E;&#x2069;|&#x200D;&#xE0041;\xE2\x82\xAC</VALUE>"));
  EXPECT_THAT(Parse().Select("//PROPERTY[@NAME='Description']/VALUE"), ElementsAre(text));
}

TEST_F(CimXmlFormatTest, IndentsWhatIsNested) {
  EXPECT_EQ(Render(),
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
            "<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.4\">\n"
            " <DECLARATION>\n"
            "  <DECLGROUP.WITHNAME>\n"
            "   <LOCALNAMESPACEPATH>\n"
            "    <NAMESPACE NAME=\"root\"></NAMESPACE>\n"
            "    <NAMESPACE NAME=\"cimv2\"></NAMESPACE>\n"
            "   </LOCALNAMESPACEPATH>\n"
            "  </DECLGROUP.WITHNAME>\n"
            " </DECLARATION>\n"
            "</CIM>\n");
}

TEST(XmlWriter, MakesAnyTextFitForAnAttribute) {
  cli::XmlWriter xml;
  xml.Element("A", [&xml] { xml.Attribute("B", "a\xFF<\x01\"\xC3\xA9\t\n\r&"); });
  EXPECT_THAT(XmlDocument(xml.Finish()).Select("/A/@B"),
              ElementsAre("a\xEF\xBF\xBD<\xEF\xBF\xBD\"\xC3\xA9\t\n\r&"));
}

}  // namespace
}  // namespace usbinfo_test
