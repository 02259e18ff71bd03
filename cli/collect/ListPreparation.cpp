#include "cli/collect/ListPreparation.h"

#include "cli/collect/ListMask.h"

namespace cli {

PreparedList PrepareList(const std::string& text, const ListTreatment& treatment) {
  PreparedList list;
  list.findings = kernel::FindingsIn(text);
  list.whole = treatment.mask ? MaskSerials(text, *treatment.mask) : text;
  if (treatment.isAsIs) {
    list.read = list.whole;
  } else {
    list.whole = kernel::RepairList(list.whole, list.repairs);
    list.read = kernel::WithoutLinesBehindEndpoints(list.whole);
  }
  return list;
}

}  // namespace cli
