#include <gtest/gtest.h>

#include "PellakCore/OrdineVoci.h"

namespace pellak {
namespace {

TEST(OrdineVoci, BySpaceIsStableAndByNameFoldsCase) {
  const std::vector<Voce> voci = {
      {"/z/beta", 5, 0}, {"/a/Alfa", 9, 0}, {"/b/alfa", 5, 0}, {"/c/Èra", 5, 0}, {"/d/èra", 1, 0}};
  EXPECT_EQ(paginaOrdinata(voci, OrdineVoci::spazio, 0, 5),
            (std::vector<std::size_t>{1, 0, 2, 3, 4}));
  EXPECT_EQ(paginaOrdinata(voci, OrdineVoci::nome, 0, 5),
            (std::vector<std::size_t>{1, 2, 0, 3, 4}));
  EXPECT_EQ(paginaOrdinata(voci, OrdineVoci::nome, 3, 2), (std::vector<std::size_t>{3, 4}));
  EXPECT_TRUE(paginaOrdinata(voci, OrdineVoci::spazio, 5, 0).empty());
}

}  // namespace
}  // namespace pellak
