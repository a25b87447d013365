#pragma once

#include "conversion/Manifest.h"
#include "xml/AbstractParser.h"

namespace FrameDriver::XML {

/// Reads the manifest, in mode `Schema`: every `moduleConfiguration`, at any depth, with up to
/// five files.
///
///     <moduleConfiguration>
///       <cplSubscriptionList> name </cplSubscriptionList>
///       <fidRegistrationList> name </fidRegistrationList>
///       <fidToCPLDictionary> name </fidToCPLDictionary>
///       <issueToSIDDictionary> name </issueToSIDDictionary>
///       <monkeytest> name </monkeytest>
///     </moduleConfiguration>
///
/// A file that isn't named exactly once below its `moduleConfiguration` has the empty name. The
/// first four lists take that too, so they stay of one length; `monkeytest` is left out then.
class ManifestParser : public AbstractParser<Tools::Manifest> {
  public:
    ~ManifestParser() override = default;

    Tools::Manifest parse(xercesc::DOMDocument* document) override;
};

}  // namespace FrameDriver::XML
