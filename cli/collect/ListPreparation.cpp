#include "cli/collect/ListPreparation.h"

#include "cli/collect/ListMask.h"

namespace cli {

PreparedList PrepareList(const std::string& text, const ListTreatment& treatment) {
  PreparedList list;
  list.findings = kernel::FindingsIn(text);
  list.whole = treatment.mask ? MaskSerials(text, *treatment.mask) : text;
  if (treatment.isAsIs) {
    list.repaired = list.whole;
    list.read = list.whole;
  } else {
    list.whole = kernel::RepairParents(list.whole, list.repairs);
    list.repaired = kernel::WithoutStaleInterfaces(list.whole, list.repairs);
    list.read = kernel::WithoutLinesBehindEndpoints(list.repaired);
  }
  return list;
}

}  // namespace cli
