// spec_gen N: writes a spec file with N subsystems to standard output, in
// products of 10 images of 100 subsystems, with every item kind the writer
// produces, so that reading and writing it exercise the whole format.
#include <cstdio>
#include <cstdlib>

int main(int argc, char** argv) {
  long total = argc > 1 ? std::atol(argv[1]) : 10000;
  const long perImage = 100, perProduct = 1000;
  for (long s = 0; s < total; ++s) {
    long product = s / perProduct, image = (s % perProduct) / perImage;
    if (s % perProduct == 0)
      std::printf("product prod%ld\n    id \"Product %ld of the benchmark\"\n", product, product);
    if (s % perImage == 0)
      std::printf("    image img%ld\n        id 'Image %ld'\n        version %ld\n"
                  "        order %ld\n",
                  image, image, 1000 + image, image * 10);
    std::printf("        subsys sub%ld%s\n            id \"Subsystem %ld\"\n"
                "            replaces self\n"
                "            prereq (\n                prod%ld.img%ld.sub%ld 0 oldvers\n"
                "            )\n"
                "            exp prod%ld.img%ld.sub%ld\n        endsubsys\n",
                s, s % 7 == 0 ? " default" : "", s, product, image, s > 0 ? s - 1 : 0,
                product, image, s);
    if (s % perImage == perImage - 1 || s == total - 1) std::printf("    endimage\n");
    if (s % perProduct == perProduct - 1 || s == total - 1) std::printf("endproduct\n");
  }
  return 0;
}
