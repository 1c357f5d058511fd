#include "coordinates/SystemNames.h"

#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::vector<std::int16_t> Grs80Datums{2, 11, 14, 19};

SystemNames NamesOfGrid(const QuorvantGrid& grid, std::int32_t identifier) {
    return NamesOf(grid.Datum(), grid.AsNumbers(), identifier);
}

} // namespace

TEST(FittingDatums, AreAllWithTheseNumbers) {
    for (std::int16_t identifier = 1; identifier <= 27; ++identifier) {
        const bool oneOfFour = identifier == 2 || identifier == 11 || identifier == 14 || identifier == 19;
        EXPECT_EQ(FittingDatums(MakeDatum(identifier)),
                  oneOfFour ? Grs80Datums : std::vector<std::int16_t>{identifier});
    }
    auto numbers = MakeDatum(3).AsNumbers();
    numbers[8] += 1e-12;
    EXPECT_THAT(FittingDatums(QuorvantDatum(numbers)), IsEmpty());
}

TEST(FittingGrids, AreFoundWhateverZoneIsShown) {
    GridNumbers numbers = MakeGrid(28, 32).AsNumbers();
    numbers.zone = 7;
    EXPECT_THAT(FittingGrids(numbers, MakeDatum(17)), ElementsAre(GridFit{28, 32}));
    EXPECT_THAT(FittingGrids(numbers, MakeDatum(3)), IsEmpty()) << "not on this datum";
    numbers.values[3] += 0.5;
    EXPECT_THAT(FittingGrids(numbers, MakeDatum(17)), IsEmpty());
    EXPECT_THAT(FittingGrids(MakeGrid(11, 0).AsNumbers(), MakeDatum(7)), ElementsAre(GridFit{11, 3}));
    EXPECT_THAT(FittingGrids(MakeGrid(31, 4204).AsNumbers(), MakeDatum(19)), ElementsAre(GridFit{31, 4204}));
    for (const std::int16_t danish : {std::int16_t{48}, std::int16_t{49}})
        EXPECT_THAT(FittingGrids(MakeGrid(danish, 0).AsNumbers(), MakeGrid(danish, 0).Datum()),
                    ElementsAre(GridFit{danish, 0}));
}

TEST(SystemNames, AreThoseOfTheIdentifier) {
    const SystemNames names = NamesOfGrid(MakeGrid(33, 15), 33);
    EXPECT_EQ(names.GridName(), "UTM (nad83)");
    EXPECT_THAT(names.grids, ElementsAre(GridFit{33, 15}));
    EXPECT_EQ(names.DatumName(), "NAD83");
    EXPECT_EQ(NamesOfGrid(MakeGrid(13, 15), 13).DatumName(), "ETRS89");
    EXPECT_EQ(NamesOfGrid(MakeGrid(16, 55), 16).DatumName(), "GDA94");
    EXPECT_EQ(NamesOfGrid(MakeGrid(20, 0), 20).DatumName(), "NZGD2000");
    EXPECT_EQ(NamesOfGrid(MakeGrid(27, 0), 27).DatumName(), "ETRS89");
    EXPECT_EQ(NamesOfGrid(MakeGrid(31, 101), 31).DatumName(), "NAD83");
    EXPECT_EQ(NamesOfGrid(MakeGrid(44, 0), 44).GridName(), "Norwegian Grid (ngo48)");
    EXPECT_EQ(NamesOfGrid(MakeGrid(32, 5), 32).DatumName(), "NAD27 (Alaska)");
}

TEST(SystemNames, OfACustomSystemAreAllThatFit) {
    const SystemNames two = NamesOfGrid(MakeGrid(33, 15), 0);
    EXPECT_EQ(two.GridName(), "UTM (etrs89) zone 15 or UTM (nad83) zone 15");
    EXPECT_EQ(two.DatumName(), "ETRS89, GDA94, NZGD2000 or NAD83");
    const SystemNames one = NamesOfGrid(MakeGrid(20, 0), 0);
    EXPECT_EQ(one.GridName(), "NZ Transverse Mercator (2000)");
    EXPECT_EQ(one.DatumName(), "NZGD2000");
    GridNumbers own = MakeGrid(20, 0).AsNumbers();
    own.values[1] = 12.345;
    const SystemNames none = NamesOf(QuorvantDatum({6378137, 0.0067, 1, 2, 3, 0, 0, 0, 0}), own, 0);
    EXPECT_EQ(none.GridName(), "");
    EXPECT_EQ(none.DatumName(), "");
    EXPECT_THAT(NamesOf(std::nullopt, std::nullopt, 0).datums, IsEmpty());
}

TEST(SystemNames, ShowAZoneWhereThereIsOne) {
    EXPECT_EQ(ZoneText(MakeGrid(28, 32).AsNumbers(), "32"), "32");
    EXPECT_EQ(ZoneText(MakeGrid(18, 0).AsNumbers(), "0"), "2") << "M31, the second of its list";
    EXPECT_EQ(ZoneText(MakeGrid(3, 0).AsNumbers(), "0"), "");
    EXPECT_EQ(ZoneText(MakeGrid(49, 0).AsNumbers(), "0"), "");
    EXPECT_EQ(ZoneText(GridNumbers{1, 0, {}}, "strip 7"), "strip 7");
}

TEST(SystemNames, AreJoinedForAReader) {
    EXPECT_EQ(JoinNames({}), "");
    EXPECT_EQ(JoinNames({"A"}), "A");
    EXPECT_EQ(JoinNames({"A", "B"}), "A or B");
    EXPECT_EQ(JoinNames({"A", "B", "C"}), "A, B or C");
}
