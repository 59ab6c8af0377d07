// spec_model_bench [N]: times the hierarchy queries on a model of N
// subsystems (default 100,000): every tag, a lookup of every node by its
// tag, every level, patch creation for 1,000 subsystems, and removing
// everything.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "spec/SpecGraphModel.h"
#include "util/Reporter.h"

namespace {

double seconds(std::chrono::steady_clock::time_point since) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - since).count();
}

}  // namespace

int main(int argc, char** argv) {
  long total = argc > 1 ? std::atol(argv[1]) : 100000;
  StreamReporter reporter(stderr);
  SpecGraphModel graph(&reporter);
  auto start = std::chrono::steady_clock::now();
  SpecNode* product = nullptr;
  SpecNode* image = nullptr;
  for (long s = 0; s < total; ++s) {
    if (s % 1000 == 0) product = graph.addRoot(graph.add("prod" + std::to_string(s / 1000)));
    if (s % 100 == 0) image = graph.addChild(product, graph.add("img" + std::to_string(s / 100)));
    graph.addChild(image, graph.add("sub" + std::to_string(s)));
  }
  std::printf("build     %.3f s\n", seconds(start));

  start = std::chrono::steady_clock::now();
  auto tags = graph.getTags();
  std::printf("getTags   %.3f s (%d tags)\n", seconds(start), tags->count());

  start = std::chrono::steady_clock::now();
  long found = 0, levels = 0;
  for (int i = 0; i < tags->count(); ++i) {
    SpecNode* node = graph.getNode((*tags)[i]);
    found += node != nullptr;
    levels += graph.getLevel(node);
  }
  std::printf("getNode   %.3f s (%ld found, level sum %ld)\n", seconds(start), found, levels);

  start = std::chrono::steady_clock::now();
  int patches = tags->count() < 1000 ? tags->count() : 1000;
  for (int i = 0; i < patches; ++i) graph.createPatchSubsystem("patch", (*tags)[i]);
  std::printf("patches   %.3f s (%d)\n", seconds(start), patches);

  // One image holding every subsystem, then everything removed.
  SpecNode* wide = graph.addChild(graph.addRoot(graph.add("wide")), graph.add("all"));
  for (long s = 0; s < total; ++s) graph.addChild(wide, graph.add("w" + std::to_string(s)));
  start = std::chrono::steady_clock::now();
  graph.removeAll();
  std::printf("removeAll %.3f s\n", seconds(start));
  return found == tags->count() ? 0 : 1;
}
