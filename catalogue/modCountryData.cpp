#include "catalogue/modCountryData.h"

namespace {

template <std::size_t N>
using Texts = std::array<std::string_view, N>;

constexpr Texts<4> InternationalGrids{"UTM North (wgs84)", "UTM South (wgs84)", "UTM (etrs89)", "UTM (ed50)"};
constexpr Texts<4> InternationalDatums{"WGS84", "WGS72", "ETRS89", "ED50"};

// "UTM North (wgs84)" comes last and no European grid is offered: the first one is what forms preselect.
constexpr Texts<5> UnitedStatesGrids{"UTM (nad83)", "UTM (nad27)", "State Plane (nad83)",
                                     "State Plane (nad27)", "UTM North (wgs84)"};
constexpr Texts<6> UnitedStatesDatums{"WGS84",         "NAD83",        "NAD27 (East)",
                                      "NAD27 (Conus)", "NAD27 (West)", "NAD27 (Alaska)"};

constexpr Texts<3> AustraliaGrids{"Australian Map Grid (amg84)", "Map Grid of Australia (mga94)",
                                  "UTM South (wgs84)"};
constexpr Texts<3> AustraliaDatums{"WGS84", "AGD84", "GDA94"};

constexpr Texts<4> AustriaGrids{"Bundesmeldenetz", "UTM North (wgs84)", "UTM (etrs89)", "UTM (ed50)"};
constexpr Texts<4> AustriaDatums{"WGS84", "MGI (Hermannskugel)", "ETRS89", "ED50"};

constexpr Texts<4> BelgiumGrids{"Belgium Grid", "UTM North (wgs84)", "UTM (etrs89)", "UTM (ed50)"};
constexpr Texts<4> BelgiumDatums{"WGS84", "BD72", "ETRS89", "ED50"};

// Denmark has ED50 entries of its own and not the common ones: users of its sheets rely on their numbers.
constexpr Texts<5> DenmarkGrids{"System 34 (Main land)", "System 45 (Bornholm)", "UTM North (wgs84)",
                                "UTM (etrs89)", "UTM (ed50 Denmark)"};
constexpr Texts<3> DenmarkDatums{"WGS84", "ETRS89", "ED50 Denmark"};

constexpr Texts<4> FinlandGrids{"Finnish Grid", "UTM North (wgs84)", "UTM (etrs89)", "UTM (ed50)"};
constexpr Texts<4> FinlandDatums{"WGS84", "Finland Hayford", "ETRS89", "ED50"};

constexpr Texts<6> FranceGrids{"French Grid (ntf)", "French Grid (rgf93)", "France Lambert 2 Etendu",
                               "UTM North (wgs84)", "UTM (etrs89)",        "UTM (ed50)"};
constexpr Texts<4> FranceDatums{"WGS84", "NTF", "ETRS89", "ED50"};

constexpr Texts<4> GermanyGrids{"German Grid (Potsdam)", "UTM North (wgs84)", "UTM (etrs89)", "UTM (ed50)"};
constexpr Texts<4> GermanyDatums{"WGS84", "Potsdam", "ETRS89", "ED50"};

constexpr Texts<4> GreatBritainGrids{"British National Grid", "UTM North (wgs84)", "UTM (etrs89)",
                                     "UTM (ed50)"};
constexpr Texts<4> GreatBritainDatums{"WGS84", "OSGB36", "ETRS89", "ED50"};

constexpr Texts<4> IrelandGrids{"Irish National Grid", "UTM North (wgs84)", "UTM (etrs89)", "UTM (ed50)"};
constexpr Texts<4> IrelandDatums{"WGS84", "Ireland 65", "ETRS89", "ED50"};

constexpr Texts<4> ItalyGrids{"Gauss Boaga (roma40)", "UTM North (wgs84)", "UTM (etrs89)", "UTM (ed50)"};
constexpr Texts<4> ItalyDatums{"WGS84", "ROMA40", "ETRS89", "ED50"};

constexpr Texts<4> LuxembourgGrids{"Luxembourg Grid (luref)", "UTM North (wgs84)", "UTM (etrs89)",
                                   "UTM (ed50)"};
constexpr Texts<4> LuxembourgDatums{"WGS84", "LUREF", "ETRS89", "ED50"};

constexpr Texts<3> NewZealandGrids{"NZ Map Grid (1972)", "NZ Transverse Mercator (2000)",
                                   "UTM South (wgs84)"};
constexpr Texts<3> NewZealandDatums{"WGS84", "NZGD49", "NZGD2000"};

constexpr Texts<4> NetherlandsGrids{"Dutch Grid (Amersfoort)", "UTM North (wgs84)", "UTM (etrs89)",
                                    "UTM (ed50)"};
constexpr Texts<4> NetherlandsDatums{"WGS84", "Amersfoort", "ETRS89", "ED50"};

constexpr Texts<4> NorwayGrids{"Norwegian Grid (ngo48)", "UTM North (wgs84)", "UTM (etrs89)", "UTM (ed50)"};
constexpr Texts<4> NorwayDatums{"WGS84", "NGO48", "ETRS89", "ED50"};

constexpr Texts<4> SwedenGrids{"Swedish Grid (rt90)", "UTM North (wgs84)", "UTM (etrs89)", "UTM (ed50)"};
constexpr Texts<4> SwedenDatums{"WGS84", "RT90", "ETRS89", "ED50"};

constexpr Texts<4> SwitzerlandGrids{"Swiss Grid (ch1903)", "UTM North (wgs84)", "UTM (etrs89)", "UTM (ed50)"};
constexpr Texts<4> SwitzerlandDatums{"WGS84", "CH1903", "ETRS89", "ED50"};

constexpr std::array<CountryRow, 18> CountryRows{{
    {"International", InternationalGrids, InternationalDatums},
    {"United States", UnitedStatesGrids, UnitedStatesDatums},
    {"Australia", AustraliaGrids, AustraliaDatums},
    {"Austria", AustriaGrids, AustriaDatums},
    {"Belgium", BelgiumGrids, BelgiumDatums},
    {"Denmark", DenmarkGrids, DenmarkDatums},
    {"Finland", FinlandGrids, FinlandDatums},
    {"France", FranceGrids, FranceDatums},
    {"Germany", GermanyGrids, GermanyDatums},
    {"Great Britain", GreatBritainGrids, GreatBritainDatums},
    {"Ireland", IrelandGrids, IrelandDatums},
    {"Italy", ItalyGrids, ItalyDatums},
    {"Luxembourg", LuxembourgGrids, LuxembourgDatums},
    {"New Zealand", NewZealandGrids, NewZealandDatums},
    {"The Netherlands", NetherlandsGrids, NetherlandsDatums},
    {"Norway", NorwayGrids, NorwayDatums},
    {"Sweden", SwedenGrids, SwedenDatums},
    {"Switzerland", SwitzerlandGrids, SwitzerlandDatums},
}};

constexpr Texts<8> NorwegianZones{"Zone (Akse) 1", "Zone (Akse) 2", "Zone (Akse) 3", "Zone (Akse) 4",
                                  "Zone (Akse) 5", "Zone (Akse) 6", "Zone (Akse) 7", "Zone (Akse) 8"};
constexpr Texts<4> FinnishZones{"Zone 1", "Zone 2", "Zone 3 (Whole country)", "Zone 4"};
constexpr Texts<2> GaussBoagaZones{"West (Fuso Ovest)", "East (Fuso Est)"};
constexpr Texts<4> FrenchZones{"Zone 1 (North)", "Zone 2", "Zone 3 (South)", "Zone 4 (Corsica)"};
constexpr Texts<3> BundesmeldenetzZones{"M28", "M31", "M34"};

constexpr std::array<ZoneListRow, 5> ZoneListRows{{
    {"Norwegian Grid (ngo48)", NorwegianZones},
    {"Finnish Grid", FinnishZones},
    {"Gauss Boaga (roma40)", GaussBoagaZones},
    {"French Grid (ntf)", FrenchZones},
    {"Bundesmeldenetz", BundesmeldenetzZones},
}};

} // namespace

std::span<const CountryRow> CountryTable() {
    return CountryRows;
}

std::span<const ZoneListRow> ZoneListTable() {
    return ZoneListRows;
}
