// What both association providers do with instances that the host already holds: reach their class,
// enumerate them, read their properties back, and link two of them. Nothing is cached: every value is
// fetched from the host each time it is asked for.
#pragma once

#include <boost/shared_ptr.hpp>
#include <string>
#include <vector>

#include "host/ICIMInstance.h"
#include "host/ICIMNamespace.h"
#include "host/PropertyMap.h"

using InstanceList = std::vector<boost::shared_ptr<NKESTA20::ICIMInstance>>;

/// The list's length now and one of its elements. Lists are walked by index and their length asked for again
/// on every step: a host may keep the callback and add to a list while it is walked.
inline int CountOf(const InstanceList& list) {
  return static_cast<int>(list.size());
}
inline boost::shared_ptr<NKESTA20::ICIMInstance> InstanceAt(const InstanceList& list, int index) {
  return list[static_cast<std::size_t>(index)];
}

/// The one-entry context by which classes of the namespace are asked for.
NKESTA20::PropertyMap MakeClassContext();

/// Appends the instances of class `className` to `list`, in the host's order; throws what the host throws.
void EnumerateInstances(const boost::shared_ptr<NKESTA20::ICIMNamespace>& ns, const std::string& className,
                        const NKESTA20::PropertyMap& context, InstanceList& list);

/// A property's value as a number of 16 bits, or as the text that the host renders; throw what the host
/// throws.
unsigned short ReadNumber(const boost::shared_ptr<NKESTA20::ICIMInstance>& instance, const std::string& name);
std::string ReadText(const boost::shared_ptr<NKESTA20::ICIMInstance>& instance, const std::string& name);

/// The properties of an association: references to the two instances.
NKESTA20::PropertyMap MakeLink(const boost::shared_ptr<NKESTA20::ICIMInstance>& antecedent,
                               const boost::shared_ptr<NKESTA20::ICIMInstance>& dependent);
