#include "embedded/dwg/records/HeaderVariables.h"

#include <algorithm>
#include <array>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "embedded/dwg/records/CommonData.h"

namespace quoin::dwg {
namespace {

using dxf::Version;

// Both tables are texts of words. "R2004+(" begins what is there since that version, "R14-("
// what is there up to it, "R2000..R2004(" both; ")" ends it.
//
// Here a word is a bit code and, behind a colon, the name of what it codes. Some stand in another
// place since R2000, and are listed twice.
//   B, BS, BL, BLL, BD, RC, TV   as in a record (RecordCoder.h)
//   3BD, 2RD   points          CMC   a colour        T   a date or a time
//   HO, HP     an owned object's handle, a referred one's
//   HP3        a handle that is only there behind a 3
//   HS         the next handle, which stands among the data
constexpr std::string_view kStored =
    "R2013+( BLL:REQUIREDVERSIONS ) "
    "BD BD BD BD TV TV TV TV BL BL R14-( BS ) R2000-( HP:CURRENT_VIEWPORT ) "
    "B:DIMASO B:DIMSHO R14-( B:DIMSAV ) B:PLINEGEN B:ORTHOMODE B:REGENMODE B:FILLMODE "
    "B:QTEXTMODE B:PSLTSCALE B:LIMCHECK R14-( B:BLIPMODE ) R2004+( B ) "
    "B:USRTIMER B:SKPOLY B:ANGDIR B:SPLFRAME R14-( B:ATTREQ B:ATTDIA ) "
    "B:MIRRTEXT B:WORLDVIEW R14-( B:WIREFRAME ) B:TILEMODE B:PLIMCHECK B:VISRETAIN "
    "R14-( B:DELOBJ ) B:DISPSILH B:PELLIPSE BS:PROXYGRAPHICS R14-( BS:DRAGMODE ) "
    "BS:TREEDEPTH BS:LUNITS BS:LUPREC BS:AUNITS BS:AUPREC R14-( BS:OSMODE ) "
    "BS:ATTMODE R14-( BS:COORDS ) BS:PDMODE R14-( BS:PICKSTYLE ) R2004+( BL BL BL ) "
    "BS:USERI1 BS:USERI2 BS:USERI3 BS:USERI4 BS:USERI5 "
    "BS:SPLINESEGS BS:SURFU BS:SURFV BS:SURFTYPE BS:SURFTAB1 BS:SURFTAB2 BS:SPLINETYPE "
    "BS:SHADEDGE BS:SHADEDIF BS:UNITMODE BS:MAXACTVP BS:ISOLINES BS:CMLJUST BS:TEXTQLTY "
    "BD:LTSCALE BD:TEXTSIZE BD:TRACEWID BD:SKETCHINC BD:FILLETRAD BD:THICKNESS BD:ANGBASE "
    "BD:PDSIZE BD:PLINEWID BD:USERR1 BD:USERR2 BD:USERR3 BD:USERR4 BD:USERR5 "
    "BD:CHAMFERA BD:CHAMFERB BD:CHAMFERC BD:CHAMFERD BD:FACETRES BD:CMLSCALE BD:CELTSCALE "
    "TV:MENU R14-( T:TDCREATE T:TDUPDATE ) R2000+( T:TDUCREATE T:TDUUPDATE ) "
    "R2004+( BL BL BL ) T:TDINDWG T:TDUSRTIMER "
    "CMC:CECOLOR HS:HANDSEED HP:CLAYER HP:TEXTSTYLE HP:CELTYPE R2007+( HP:CMATERIAL ) "
    "HP:DIMSTYLE HP:CMLSTYLE R2000+( BD:PSVPSCALE ) "
    "3BD:PINSBASE 3BD:PEXTMIN 3BD:PEXTMAX 2RD:PLIMMIN 2RD:PLIMMAX BD:PELEVATION "
    "3BD:PUCSORG 3BD:PUCSXDIR 3BD:PUCSYDIR HP:PUCSNAME "
    "R2000+( HP:PUCSORTHOREF BS:PUCSORTHOVIEW HP:PUCSBASE 3BD:PUCSORGTOP 3BD:PUCSORGBOTTOM "
    "3BD:PUCSORGLEFT 3BD:PUCSORGRIGHT 3BD:PUCSORGFRONT 3BD:PUCSORGBACK ) "
    "3BD:INSBASE 3BD:EXTMIN 3BD:EXTMAX 2RD:LIMMIN 2RD:LIMMAX BD:ELEVATION "
    "3BD:UCSORG 3BD:UCSXDIR 3BD:UCSYDIR HP:UCSNAME "
    "R2000+( HP:UCSORTHOREF BS:UCSORTHOVIEW HP:UCSBASE 3BD:UCSORGTOP 3BD:UCSORGBOTTOM "
    "3BD:UCSORGLEFT 3BD:UCSORGRIGHT 3BD:UCSORGFRONT 3BD:UCSORGBACK TV:DIMPOST TV:DIMAPOST ) "
    "R14-( B:DIMTOL B:DIMLIM B:DIMTIH B:DIMTOH B:DIMSE1 B:DIMSE2 B:DIMALT B:DIMTOFL B:DIMSAH "
    "B:DIMTIX B:DIMSOXD RC:DIMALTD RC:DIMZIN B:DIMSD1 B:DIMSD2 RC:DIMTOLJ RC:DIMJUST RC:DIMFIT "
    "B:DIMUPT RC:DIMTZIN RC:DIMALTZ RC:DIMALTTZ RC:DIMTAD BS:DIMUNIT BS:DIMAUNIT BS:DIMDEC "
    "BS:DIMTDEC BS:DIMALTU BS:DIMALTTD HP:DIMTXSTY ) "
    "BD:DIMSCALE BD:DIMASZ BD:DIMEXO BD:DIMDLI BD:DIMEXE BD:DIMRND BD:DIMDLE BD:DIMTP BD:DIMTM "
    "R2007+( BD:DIMFXL BD:DIMJOGANG BS:DIMTFILL CMC:DIMTFILLCLR ) "
    "R2000+( B:DIMTOL B:DIMLIM B:DIMTIH B:DIMTOH B:DIMSE1 B:DIMSE2 BS:DIMTAD BS:DIMZIN "
    "BS:DIMAZIN ) R2007+( BS:DIMARCSYM ) "
    "BD:DIMTXT BD:DIMCEN BD:DIMTSZ BD:DIMALTF BD:DIMLFAC BD:DIMTVP BD:DIMTFAC BD:DIMGAP "
    "R14-( TV:DIMPOST TV:DIMAPOST TV:DIMBLK TV:DIMBLK1 TV:DIMBLK2 ) "
    "R2000+( BD:DIMALTRND B:DIMALT BS:DIMALTD B:DIMTOFL B:DIMSAH B:DIMTIX B:DIMSOXD ) "
    "CMC:DIMCLRD CMC:DIMCLRE CMC:DIMCLRT "
    "R2000+( BS:DIMADEC BS:DIMDEC BS:DIMTDEC BS:DIMALTU BS:DIMALTTD BS:DIMAUNIT BS:DIMFRAC "
    "BS:DIMLUNIT BS:DIMDSEP BS:DIMTMOVE BS:DIMJUST B:DIMSD1 B:DIMSD2 BS:DIMTOLJ BS:DIMTZIN "
    "BS:DIMALTZ BS:DIMALTTZ B:DIMUPT BS:DIMATFIT ) R2007+( B:DIMFXLON ) "
    "R2010+( B:DIMTXTDIRECTION BD:DIMALTMZF TV:DIMALTMZS BD:DIMMZF TV:DIMMZS ) "
    "R2000+( HP:DIMTXSTY HP:DIMLDRBLK HP:DIMBLK HP:DIMBLK1 HP:DIMBLK2 ) "
    "R2007+( HP:DIMLTYPE HP:DIMLTEX1 HP:DIMLTEX2 ) R2000+( BS:DIMLWD BS:DIMLWE ) "
    "HO:BLOCK_CONTROL HO:LAYER_CONTROL HO:STYLE_CONTROL HO:LTYPE_CONTROL HO:VIEW_CONTROL "
    "HO:UCS_CONTROL HO:VPORT_CONTROL HO:APPID_CONTROL HO:DIMSTYLE_CONTROL "
    "R2000-( HO:VX_CONTROL ) HP:GROUPS HP:MLINESTYLES HO:NAMED_OBJECTS "
    "R2000+( BS:TSTACKALIGN BS:TSTACKSIZE TV:HYPERLINKBASE TV:STYLESHEET HP:LAYOUTS "
    "HP:PLOTSETTINGS HP:PLOTSTYLES ) R2004+( HP:MATERIALS HP:COLORS ) R2007+( HP:VISUALSTYLES ) "
    "R2013+( HP ) "
    "R2000+( BL:FLAGS BS:INSUNITS BS:CEPSNTYPE HP3:CEPSNID TV:FINGERPRINTGUID TV:VERSIONGUID ) "
    "R2004+( RC:SORTENTS RC:INDEXCTL RC:HIDETEXT RC:XCLIPFRAME RC:DIMASSOC RC:HALOGAP "
    "BS:OBSCOLOR BS:INTERSECTIONCOLOR RC:OBSLTYPE RC:INTERSECTIONDISPLAY TV:PROJECTNAME ) "
    "HP:PAPER_SPACE HP:MODEL_SPACE HP:BYLAYER HP:BYBLOCK HP:CONTINUOUS "
    "R2007+( B:CAMERADISPLAY BL BL BD BD:STEPSPERSEC BD:STEPSIZE BD:3DDWFPREC BD:LENSLENGTH "
    "BD:CAMERAHEIGHT RC:SOLIDHIST RC:SHOWHIST BD:PSOLWIDTH BD:PSOLHEIGHT BD:LOFTANG1 "
    "BD:LOFTANG2 BD:LOFTMAG1 BD:LOFTMAG2 BS:LOFTPARAM RC:LOFTNORMALS BD:LATITUDE BD:LONGITUDE "
    "BD:NORTHDIRECTION BL:TIMEZONE RC:LIGHTGLYPHDISPLAY RC:TILEMODELIGHTSYNCH RC:DWFFRAME "
    "RC:DGNFRAME B:REALWORLDSCALE CMC:INTERFERECOLOR HP:INTERFEREOBJVS HP:INTERFEREVPVS "
    "HP:DRAGVS RC:CSHADOW BD:SHADOWPLANELOCATION ) ";

// Here a word is a name and, behind an equals sign, a layout (DxfLayout.h).
constexpr std::string_view kSpelled =
    "$ACADVER=1 R2013-( $ACADMAINTVER=70 ) R2018+( $ACADMAINTVER=90 ) $DWGCODEPAGE=3 "
    "R2004+( $LASTSAVEDBY=1 ) R2013+( $REQUIREDVERSIONS=160 ) "
    "$INSBASE=10p $EXTMIN=10p $EXTMAX=10p $LIMMIN=10q $LIMMAX=10q $ORTHOMODE=70 $REGENMODE=70 "
    "$FILLMODE=70 $QTEXTMODE=70 $MIRRTEXT=70 R14-( $DRAGMODE=70 ) $LTSCALE=40 "
    "R14-( $OSMODE=70 ) $ATTMODE=70 $TEXTSIZE=40 $TRACEWID=40 $TEXTSTYLE=7:STYLE "
    "$CLAYER=8:LAYER $CELTYPE=6:LTYPE $CECOLOR=62 $CELTSCALE=40 R14-( $DELOBJ=70 ) "
    "$DISPSILH=70 $DIMSCALE=40 $DIMASZ=40 $DIMEXO=40 $DIMDLI=40 $DIMRND=40 $DIMDLE=40 "
    "$DIMEXE=40 $DIMTP=40 $DIMTM=40 $DIMTXT=40 $DIMCEN=40 $DIMTSZ=40 $DIMTOL=70 $DIMLIM=70 "
    "$DIMTIH=70 $DIMTOH=70 $DIMSE1=70 $DIMSE2=70 $DIMTAD=70 $DIMZIN=70 $DIMBLK=1 $DIMASO=70 "
    "$DIMSHO=70 $DIMPOST=1 $DIMAPOST=1 $DIMALT=70 $DIMALTD=70 $DIMALTF=40 $DIMLFAC=40 "
    "$DIMTOFL=70 $DIMTVP=40 $DIMTIX=70 $DIMSOXD=70 $DIMSAH=70 $DIMBLK1=1 $DIMBLK2=1 "
    "$DIMSTYLE=2:DIMSTYLE $DIMCLRD=70 $DIMCLRE=70 $DIMCLRT=70 $DIMTFAC=40 $DIMGAP=40 "
    "$DIMJUST=70 $DIMSD1=70 $DIMSD2=70 $DIMTOLJ=70 $DIMTZIN=70 $DIMALTZ=70 $DIMALTTZ=70 "
    "R14-( $DIMFIT=70 ) $DIMUPT=70 R14-( $DIMUNIT=70 ) $DIMDEC=70 $DIMTDEC=70 $DIMALTU=70 "
    "$DIMALTTD=70 $DIMTXSTY=7:STYLE $DIMAUNIT=70 "
    "R2000+( $DIMADEC=70 $DIMALTRND=40 $DIMAZIN=70 $DIMDSEP=70 $DIMATFIT=70 $DIMFRAC=70 "
    "$DIMLDRBLK=1 $DIMLUNIT=70 $DIMLWD=70 $DIMLWE=70 $DIMTMOVE=70 ) "
    "R2007+( $DIMFXL=40 $DIMFXLON=70 $DIMJOGANG=40 $DIMTFILL=70 $DIMTFILLCLR=70 $DIMARCSYM=70 "
    "$DIMLTYPE=6:LTYPE $DIMLTEX1=6:LTYPE $DIMLTEX2=6:LTYPE ) R2010+( $DIMTXTDIRECTION=70 ) "
    "$LUNITS=70 $LUPREC=70 $SKETCHINC=40 $FILLETRAD=40 $AUNITS=70 $AUPREC=70 $MENU=1 "
    "$ELEVATION=40 $PELEVATION=40 $THICKNESS=40 $LIMCHECK=70 $CHAMFERA=40 $CHAMFERB=40 "
    "$CHAMFERC=40 $CHAMFERD=40 $SKPOLY=70 $TDCREATE=40 R2000+( $TDUCREATE=40 ) $TDUPDATE=40 "
    "R2000+( $TDUUPDATE=40 ) $TDINDWG=40 $TDUSRTIMER=40 $USRTIMER=70 $ANGBASE=50a $ANGDIR=70 "
    "$PDMODE=70 $PDSIZE=40 $PLINEWID=40 "
    "R14-( $COORDS=70 ) $SPLFRAME=70 $SPLINETYPE=70 $SPLINESEGS=70 "
    "R14-( $ATTDIA=70 $ATTREQ=70 $HANDLING=70 ) $HANDSEED=5 "
    "$SURFTAB1=70 $SURFTAB2=70 $SURFTYPE=70 $SURFU=70 $SURFV=70 R2000+( $UCSBASE=2:UCS ) "
    "$UCSNAME=2:UCS $UCSORG=10p $UCSXDIR=10p $UCSYDIR=10p "
    "R2000+( $UCSORTHOREF=2:UCS $UCSORTHOVIEW=70 $UCSORGTOP=10p $UCSORGBOTTOM=10p "
    "$UCSORGLEFT=10p $UCSORGRIGHT=10p $UCSORGFRONT=10p $UCSORGBACK=10p $PUCSBASE=2:UCS ) "
    "$PUCSNAME=2:UCS $PUCSORG=10p $PUCSXDIR=10p $PUCSYDIR=10p "
    "R2000+( $PUCSORTHOREF=2:UCS $PUCSORTHOVIEW=70 $PUCSORGTOP=10p $PUCSORGBOTTOM=10p "
    "$PUCSORGLEFT=10p $PUCSORGRIGHT=10p $PUCSORGFRONT=10p $PUCSORGBACK=10p ) "
    "$USERI1=70 $USERI2=70 $USERI3=70 $USERI4=70 $USERI5=70 "
    "$USERR1=40 $USERR2=40 $USERR3=40 $USERR4=40 $USERR5=40 $WORLDVIEW=70 $SHADEDGE=70 "
    "$SHADEDIF=70 $TILEMODE=70 $MAXACTVP=70 $PINSBASE=10p $PLIMCHECK=70 $PEXTMIN=10p "
    "$PEXTMAX=10p $PLIMMIN=10q $PLIMMAX=10q $UNITMODE=70 $VISRETAIN=70 $PLINEGEN=70 "
    "$PSLTSCALE=70 $TREEDEPTH=70 R14-( $PICKSTYLE=70 ) $CMLSTYLE=2:MLINESTYLE $CMLJUST=70 "
    "$CMLSCALE=40 $PROXYGRAPHICS=70 $MEASUREMENT=70 "
    "R2000+( $CELWEIGHT=370w $ENDCAPS=280 $JOINSTYLE=280 $LWDISPLAY=290 $INSUNITS=70 "
    "$HYPERLINKBASE=1 $STYLESHEET=1 $XEDIT=290 $CEPSNTYPE=380 $CEPSNID=390 $PSTYLEMODE=290 "
    "$FINGERPRINTGUID=2 $VERSIONGUID=2 $EXTNAMES=290 $PSVPSCALE=40 $OLESTARTUP=290 ) "
    "R2004+( $SORTENTS=280 $INDEXCTL=280 $HIDETEXT=280 ) R2004..R2007( $XCLIPFRAME=290 ) "
    "R2010+( $XCLIPFRAME=280 ) "
    "R2004+( $HALOGAP=280 $OBSCOLOR=70 $OBSLTYPE=280 $INTERSECTIONDISPLAY=280 "
    "$INTERSECTIONCOLOR=70 $DIMASSOC=280 $PROJECTNAME=1 ) "
    "R2007+( $CAMERADISPLAY=290 $LENSLENGTH=40 $CAMERAHEIGHT=40 $STEPSPERSEC=40 $STEPSIZE=40 "
    "$3DDWFPREC=40 $PSOLWIDTH=40 $PSOLHEIGHT=40 $LOFTANG1=40 $LOFTANG2=40 $LOFTMAG1=40 "
    "$LOFTMAG2=40 $LOFTPARAM=70 $LOFTNORMALS=280 $LATITUDE=40 $LONGITUDE=40 $NORTHDIRECTION=40 "
    "$TIMEZONE=70 $LIGHTGLYPHDISPLAY=280 $TILEMODELIGHTSYNCH=280 $CMATERIAL=347 $SOLIDHIST=280 "
    "$SHOWHIST=280 $DWFFRAME=280 $DGNFRAME=280 $REALWORLDSCALE=290 $INTERFERECOLOR=62 "
    "$INTERFEREOBJVS=345?0 $INTERFEREVPVS=346?0 $DRAGVS=349?0 $CSHADOW=280 "
    "$SHADOWPLANELOCATION=40 ) ";

// The bits of FLAGS.
constexpr std::array<PackedVariable, 8> kPacked = {{
    {"$CELWEIGHT", 0, 5, false},
    {"$ENDCAPS", 5, 2, false},
    {"$JOINSTYLE", 7, 2, false},
    {"$LWDISPLAY", 9, 1, true},
    {"$XEDIT", 10, 1, true},
    {"$EXTNAMES", 11, 1, false},
    {"$PSTYLEMODE", 13, 1, false},
    {"$OLESTARTUP", 14, 1, false},
}};

constexpr std::array<std::pair<std::string_view, VariableCode>, 15> kCodes = {{
    {"B", VariableCode::Bit},
    {"RC", VariableCode::RawChar},
    {"BS", VariableCode::BitShort},
    {"BL", VariableCode::BitLong},
    {"BLL", VariableCode::BitLongLong},
    {"BD", VariableCode::BitDouble},
    {"TV", VariableCode::Text},
    {"3BD", VariableCode::Point3},
    {"2RD", VariableCode::Point2},
    {"CMC", VariableCode::Color},
    {"T", VariableCode::Date},
    {"HO", VariableCode::Owner},
    {"HP", VariableCode::Pointer},
    {"HP3", VariableCode::PointerBehind3},
    {"HS", VariableCode::HandleSeed},
}};

Version versionNamed(std::string_view release) {
  for (auto version = Version::R13; version < Version::R2018;
       version = static_cast<Version>(static_cast<int>(version) + 1)) {
    if (dxf::releaseName(version) == release) {
      return version;
    }
  }
  return Version::R2018;
}

/// Takes one of the tables apart: calls `take` with each word and the versions that have it.
template <typename Take>
void forEachWord(std::string_view table, Take take) {
  Version since = Version::R13;
  Version until = Version::R2018;
  while (!table.empty()) {
    const std::string_view word = table.substr(0, table.find(' '));
    table.remove_prefix(std::min(word.size() + 1, table.size()));
    if (word == ")") {
      since = Version::R13;
      until = Version::R2018;
    } else if (!word.ends_with('(')) {
      take(word, since, until);
    } else if (const std::size_t dots = word.find(".."); dots != std::string_view::npos) {
      since = versionNamed(word.substr(0, dots));
      until = versionNamed(word.substr(dots + 2, word.size() - dots - 3));
    } else {
      const Version version = versionNamed(word.substr(0, word.size() - 2));
      (word[word.size() - 2] == '+' ? since : until) = version;
    }
  }
}

std::vector<StoredVariable> readStored() {
  constexpr int kKeyDistance = 100;
  std::vector<StoredVariable> variables;
  forEachWord(kStored, [&](std::string_view word, Version since, Version until) {
    StoredVariable& variable = variables.emplace_back();
    const std::size_t colon = std::min(word.find(':'), word.size());
    const auto code = std::find_if(kCodes.begin(), kCodes.end(), [&](const auto& row) {
      return row.first == word.substr(0, colon);
    });
    variable.code = code->second;
    variable.name = word.substr(std::min(colon + 1, word.size()));
    variable.since = since;
    variable.until = until;
    variable.key = static_cast<int>(variables.size()) * kKeyDistance;
  });
  return variables;
}

std::vector<SpelledVariable> readSpelled() {
  std::vector<SpelledVariable> variables;
  forEachWord(kSpelled, [&](std::string_view word, Version since, Version until) {
    const std::size_t equals = word.find('=');
    variables.push_back({word.substr(0, equals), DxfLayout(word.substr(equals + 1)), since, until});
  });
  return variables;
}

}  // namespace

std::span<const StoredVariable> storedVariables() {
  static const std::vector<StoredVariable> variables = readStored();
  return variables;
}

const StoredVariable* storedVariable(std::string_view name, Version version) {
  static const auto byName = [] {
    std::unordered_multimap<std::string_view, const StoredVariable*> found;
    for (const StoredVariable& variable : storedVariables()) {
      if (!variable.name.empty()) {
        found.emplace(variable.name, &variable);
      }
    }
    return found;
  }();
  const auto [begin, end] = byName.equal_range(name);
  const auto found = std::find_if(
      begin, end, [version](const auto& entry) { return entry.second->isIn(version); });
  return found == end ? nullptr : found->second;
}

std::span<const SpelledVariable> spelledVariables() {
  static const std::vector<SpelledVariable> variables = readSpelled();
  return variables;
}

const PackedVariable* packedVariable(std::string_view name) {
  const auto found = std::find_if(kPacked.begin(), kPacked.end(),
                                  [name](const PackedVariable& row) { return row.name == name; });
  return found == kPacked.end() ? nullptr : &*found;
}

namespace {

/// Reads or writes one variable. `former` is the number in front of it; returns its own.
std::int64_t codeVariable(RecordCoder& coder, const StoredVariable& variable, std::int64_t former) {
  constexpr std::int64_t kIsNamed = 3;
  const int key = variable.key;
  switch (variable.code) {
    case VariableCode::Bit:
      return coder.B(key);
    case VariableCode::RawChar:
      return coder.RC(key);
    case VariableCode::BitShort:
      return coder.BS(key);
    case VariableCode::BitLong:
      return coder.BL(key);
    case VariableCode::BitLongLong:
      return coder.BLL(key);
    case VariableCode::BitDouble:
      coder.BD(key);
      break;
    case VariableCode::Text:
      coder.TV(key);
      break;
    case VariableCode::Point3:
      coder.point3BD(key);
      break;
    case VariableCode::Point2:
      coder.point2RD(key);
      break;
    case VariableCode::Color:
      codeColor(coder, key, key + kTrueColor, key + kColorNames);
      break;
    case VariableCode::Date:
      coder.BL(key);
      coder.BL(key + kMilliseconds);
      break;
    case VariableCode::Owner:
      coder.H(key, kHardOwner);
      break;
    case VariableCode::Pointer:
      coder.H(key, kHardPointer);
      break;
    case VariableCode::PointerBehind3:
      if (former == kIsNamed) {
        coder.H(key, kHardPointer);
      }
      break;
    case VariableCode::HandleSeed:
      coder.dataHandle(key, 0);
      break;
  }
  return 0;
}

}  // namespace

void codeVariables(RecordCoder& coder) {
  coder.openSection();
  std::int64_t former = 0;
  for (const StoredVariable& variable : storedVariables()) {
    if (variable.isIn(coder.version())) {
      former = codeVariable(coder, variable, former);
    }
  }
}

}  // namespace quoin::dwg
