// SpecGraphPartner: what the file list needs from the product hierarchy.
// The application adapts the spec graph to it; optional (without one, saving
// proposes ".idb" and a patch keeps its tags).
#ifndef TAMBLIN_FILELIST_SPECGRAPHPARTNER_H
#define TAMBLIN_FILELIST_SPECGRAPHPARTNER_H

#include <string>

class SpecGraphPartner {
 public:
  virtual ~SpecGraphPartner() = default;

  /// Name of the (first) product; "" when the graph holds none.
  virtual std::string getProductName() = 0;
  /// Creates what is missing of patchName's hierarchy for the subsystem
  /// sourceTag (product.image.subsys) and returns the patch subsystem's tag.
  virtual std::string createPatchSubsystem(const std::string& patchName,
                                           const std::string& sourceTag) = 0;
  /// Deletes the product named name with everything under it.
  virtual void deleteProduct(const std::string& name) = 0;
};

#endif
