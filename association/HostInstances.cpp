#include "association/HostInstances.h"

#include "host/ICIMClass.h"
#include "host/ICIMProperty.h"
#include "host/TAddToVectorCallback.h"
#include "host/TCIMSchemaHelper.h"
#include "plugin/Vocabulary.h"
#include "provider/PropertyInsertion.h"

using NKESTA20::ICIMClass;
using NKESTA20::ICIMInstance;
using NKESTA20::ICIMNamespace;
using NKESTA20::PropertyMap;
using NKESTA20::TAddToVectorCallback;
using NKESTA20::TCIMReference;
using NKESTA20::TCIMSchemaHelper;
using NKESTA20::TCIMValue;

PropertyMap MakeClassContext() {
  PropertyMap context;
  context.insert(std::make_pair(TCIMSchemaHelper::kContextName, TCIMValue(TCIMSchemaHelper::kPluginNSPName)));
  return context;
}

void EnumerateInstances(const boost::shared_ptr<ICIMNamespace>& ns, const std::string& className,
                        const PropertyMap& context, InstanceList& list) {
  const boost::shared_ptr<ICIMClass> cls = ns->GetClass(className, context);
  cls->EnumerateInstances(TAddToVectorCallback<ICIMInstance>(list), 0, PropertyMap());
}

unsigned short ReadNumber(const boost::shared_ptr<ICIMInstance>& instance, const std::string& name) {
  return instance->GetProperty(name, PropertyMap())->GetValue(PropertyMap());
}

std::string ReadText(const boost::shared_ptr<ICIMInstance>& instance, const std::string& name) {
  return instance->GetProperty(name, PropertyMap())->GetValueAsText();
}

PropertyMap MakeLink(const boost::shared_ptr<ICIMInstance>& antecedent,
                     const boost::shared_ptr<ICIMInstance>& dependent) {
  PropertyMap link;
  TCIMReference antecedentPath = antecedent->GetObjectPath(PropertyMap());
  InsertProperty(&link, kAntecedent, TCIMValue(antecedentPath));
  TCIMReference dependentPath = dependent->GetObjectPath(PropertyMap());
  InsertProperty(&link, kDependent, TCIMValue(dependentPath));
  return link;
}
