// Checks what `itof calibration check` says of many files: one row for each, and which deviate from the rest.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <vector>

#include "support/calibrationbytes.h"
#include "support/simulatedfleet.h"
#include "support/toolrunner.h"

namespace {

using Json = nlohmann::json;

class FleetTest : public ToolRunner {
 protected:
  static std::string Name(size_t unit) {
    const std::string digits = std::to_string(1000 + unit);
    return "fleet/" + digits.substr(1) + ".bin";
  }

  void WriteFleet(const std::vector<itof::CalibrationRecord>& fleet) {
    std::filesystem::remove_all(folder_ / "fleet");
    std::filesystem::create_directory(folder_ / "fleet");
    for (size_t i = 0; i < fleet.size(); ++i) {
      Write(Name(i).c_str(), std::string(reinterpret_cast<const char*>(&fleet[i]), sizeof fleet[i]));
    }
  }

  /// The units beyond the threshold, each with the quantities in which it is.
  static std::map<std::string, std::set<std::string>> Beyond(const Json& check) {
    std::map<std::string, std::set<std::string>> beyond;
    for (const Json& unit : check["fleet"]["deviating"]) {
      if (!unit["beyond_threshold"]) continue;
      for (const Json& deviation : unit["deviations"]) beyond[unit["file"]].insert(deviation["quantity"]);
    }
    return beyond;
  }
};

TEST_F(FleetTest, NamesPlantedDefectsAndNoSoundUnit) {
  std::vector<itof::CalibrationRecord> fleet = SimulatedFleet(100, 15);
  for (float& metres : fleet[13].translation) metres /= 1000;
  fleet[45] = fleet[44];
  std::ranges::copy(fleet[50].auxDistortion, fleet[50].tofDistortion);
  itoftool::Mat3 rotation;
  std::ranges::copy(fleet[62].rotation, rotation.m);
  rotation = itoftool::Rotation(0, 0.0087269, 0) * rotation;  // by one degree
  std::ranges::transform(rotation.m, fleet[62].rotation, [](double value) { return static_cast<float>(value); });
  fleet[73].auxDistortion[0] += 0.15F;
  fleet[80].auxIntrinsics[2] += 36;  // 12 pixels of the frame
  fleet[91].rotation[4] = 2;
  WriteFleet(fleet);

  const Result run = Run("calibration check fleet --json");
  EXPECT_EQ(run.code, 1) << "unit 91 has no rotation: " << run.err;
  const Json check = Json::parse(run.out);
  EXPECT_EQ(check["fleet"]["identical"], Json::parse(R"([{"files": ["fleet/044.bin", "fleet/045.bin"],
                                                           "same_bytes": true}])"));
  const auto beyond = Beyond(check);
  const std::map<size_t, std::string> planted{{13, "translation[0]"},   {50, "tofDistortion[0]"},
                                              {62, "turn about y"},     {73, "auxDistortion[0]"},
                                              {80, "auxIntrinsics[2]"}, {91, "rotation not valid"}};
  EXPECT_EQ(beyond.size(), planted.size());
  for (const auto& [unit, quantity] : planted) {
    ASSERT_TRUE(beyond.contains(Name(unit))) << unit;
    EXPECT_TRUE(beyond.at(Name(unit)).contains(quantity)) << unit << ' ' << quantity;
  }
  EXPECT_FALSE(beyond.at(Name(91)).contains("tofIntrinsics[4]"));
}

TEST_F(FleetTest, RarelyListsUnitsOfSoundFleets) {
  // One fleet in a hundred is expected to have a unit beyond the threshold.
  size_t alarms = 0;
  for (unsigned seed = 1; seed <= 12; ++seed) {
    WriteFleet(SimulatedFleet(5 + seed, 1000 + seed));
    const Json check = Json::parse(Run("calibration check fleet --json").out);
    EXPECT_EQ(check["fleet"]["deviating"].size(), 5U);
    alarms += !Beyond(check).empty();
  }
  EXPECT_LE(alarms, 1U);
}

TEST_F(FleetTest, ComparesEqualCamerasAsComputedByHand) {
  // Their distances have the median 27.5 and the median absolute deviation 1.5.
  std::filesystem::create_directory(folder_ / "fleet");
  for (const int distance : {25, 26, 27, 28, 29, 150}) {
    Write(Name(static_cast<size_t>(distance)).c_str(),
          CalibrationBytes(IdentityCalibration({{22, -static_cast<float>(distance)}})));
  }
  const Json check = Json::parse(Run("calibration check --json fleet").out);
  const Json& farthest = check["fleet"]["deviating"][0];
  EXPECT_TRUE(farthest["file"] == "fleet/150.bin" && farthest["beyond_threshold"] == true) << farthest;
  const auto isTranslation = [](const Json& deviation) { return deviation["quantity"] == "translation[0]"; };
  const Json& deviations = farthest["deviations"];
  const auto found = std::ranges::find_if(deviations, isTranslation);
  ASSERT_NE(found, deviations.end());
  EXPECT_TRUE((*found)["value"] == -150 && (*found)["median"] == -27.5 && (*found)["mad"] == 1.5) << *found;
  EXPECT_NEAR((*found)["deviation"], 122.5 / (1.4826 * 1.5), 1e-9);
  for (const auto& [row, depth] : {std::pair(0U, 0.3), {1U, 1.0}, {2U, 3.0}}) {
    EXPECT_NEAR(farthest["moved_pixels"][row]["median"], 0.512 * 122.5 / depth, 1e-4);
  }
  EXPECT_NEAR(check["units"][5]["fleet_pixels"], 0.512 * 122.5 / 0.3, 1e-4);
  EXPECT_EQ(check["fleet"]["quantities"].size(), 50U + 4 + 6);
  const std::string text = Run("calibration check fleet").out;
  for (const char* part : {"fleet/150.bin       0         0      0          -     209.1  -\n",
                           "  translation[0]                -150         -27.5           1.5       55.1  depth codes",
                           "0.3 m: 209.1 / 209.1, 1.0 m: 62.7 / 62.7, 3.0 m: 20.9 / 20.9"}) {
    EXPECT_NE(text.find(part), std::string::npos) << part << " in\n" << text;
  }

  // A field that is constant in the fleet, and a copy whose unused words differ.
  Write(Name(26).c_str(), CalibrationBytes(IdentityCalibration({{22, -26}, {28, 480}})));
  Write(Name(28).c_str(), CalibrationBytes(IdentityCalibration({{0, 5}, {22, -27}})));
  const Json changed = Json::parse(Run("calibration check --json fleet").out);
  EXPECT_EQ(Beyond(changed).begin()->first, "fleet/026.bin");
  EXPECT_TRUE(changed["fleet"]["deviating"][0]["deviations"][0]["deviation"].is_null());
  EXPECT_EQ(changed["fleet"]["identical"], Json::parse(R"([{"files": ["fleet/027.bin", "fleet/028.bin"],
                                                            "same_bytes": false}])"));
}

TEST_F(FleetTest, RowsSayWhatCannotBeChecked) {
  const std::string apart = CalibrationBytes(IdentityCalibration({{22, -25}}));
  std::filesystem::create_directories(folder_ / "empty/below.bin");
  std::filesystem::create_directory(folder_ / "some");
  for (const char* name : {"a, \"b\".bin", "some/no extension", "some/.hidden.bin"}) Write(name, apart);
  Write("some/short.BIN", apart.substr(1));
  Write("some/notes.txt", "not a calibration");
  ExpectFailure(1, "calibration check empty", "empty: is a folder without calibrations");
  const Result alone = Run("calibration check --csv missing.bin");
  EXPECT_TRUE(alone.code == 1 && alone.err == "itof: missing.bin: No such file or directory\n") << alone.err;
  EXPECT_NE(alone.out.find("\nmissing.bin,1,0,0,unreadable,error,,,No such file"), std::string::npos) << alone.out;
  ExpectFailure(2, "calibration check some --csv --json", "--json excludes --csv");

  const std::string paths = " 'a, \"b\".bin' some empty missing.bin 'some/no extension'";
  const Result csv = Run("calibration check --csv" + paths);
  EXPECT_EQ(csv.out,
            "file,errors,warnings,notes,worst,worst_severity,effect_pixels,fleet_pixels,reason\n"
            "\"a, \"\"b\"\".bin\",0,0,0,,,,,\n"
            "some/no extension,0,0,0,,,,,\n"
            "some/short.BIN,1,0,0,size,error,,,\n"
            "empty,1,0,0,unreadable,error,,,\"is a folder without calibrations: no file of 228 bytes, none named "
            "*.bin\"\n"
            "missing.bin,1,0,0,unreadable,error,,,No such file or directory\n");
  EXPECT_TRUE(csv.code == 1 && csv.err == "itof: 5 units: 3 with errors, 0 with warnings only\n") << csv.err;

  const Result text = Run("calibration check --verbose" + paths), json = Run("calibration check --json" + paths);
  EXPECT_TRUE(text.code == 1 && text.err == csv.err && json.code == 1 && json.err == csv.err);
  EXPECT_NE(text.out.find("missing.bin             1         0      0          -         -  unreadable: No such file"),
            std::string::npos)
      << text.out;
  EXPECT_NE(text.out.find("error [size]\n  The file holds 227 bytes"), std::string::npos) << text.out;
  const Json check = Json::parse(json.out);
  EXPECT_TRUE(check["fleet"].is_null());
  const Result oneLine = Run("calibration check missing.bin 'a\nb\x1b[31m'");
  EXPECT_NE(oneLine.out.find("\na b [31m "), std::string::npos) << oneLine.out;
  const Json& finding = check["units"][2]["findings"][0];
  EXPECT_TRUE(finding["severity"] == "error" && finding["code"] == "size" && finding["readings"].empty()) << finding;
}

}  // namespace
