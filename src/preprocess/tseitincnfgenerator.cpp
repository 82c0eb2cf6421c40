// The generators the library uses. Sinks of later roads (cores,
// interpolation) add their instantiations here.
#include "preprocess/dpllclausesink.h"
#include "preprocess/tseitincnfgenerator_impl.h"

namespace zenlo {

template class TseitinCNFGenerator<DpllClauseSink>;

}  // namespace zenlo
