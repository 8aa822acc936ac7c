#include "fuzz/FilterCase.h"

#include <fuzzer/FuzzedDataProvider.h>

namespace secm::fuzzing {

using testing::Offer;

namespace {

using Texts = std::vector<std::string>;

const std::string root = R"(zarvona\system\)";
const std::string access = root + R"(applications\securitymanager\unified_access_control\)";

// What stands several times in these tables is chosen more often.

// Parts of templates, and texts that look like them.
const Texts pieces = {
    "%values%", "%equal_operator%", "%my%",   "$uid$", "$a$",  "$",    "'",    ",",      " ", "=", "x", "(", ")", "%",
    "$$",       "%VALUES%",         "%value", "s%",    "$uid", "uid$", "%%my", "values%"};
const Texts templates = {"f %equal_operator% %values%",      "g%equal_operator%'%values%'",    "owner = '$uid$'",
                         "%values%%equal_operator%%values%", "$a$ %equal_operator% $uid$ $a$", "constant"};
const Texts separators = {" AND ", ", ", " or ", ",", "', '", ""};
const Texts tokens = {"$uid$", "$a$", "$none$", "$", "$$", "uid", "", " $uid$", "$a", "%values%"};
const Texts permissionNames = {"p", "p", "p", "q", "q", "P", "p ", ""};
const Texts resources = {"%my%", "%my%", "7", "s1", "ab", "", "default", "%values%", "%equal_operator%", "S1", "$uid$"};
const Texts codes = {"7", "ab", "%my%", "AB", "", "s1"};
const Texts tables = {"t", "u", "", "%my%"};
const Texts userNames = {"u", "v", "", std::string("u\0w", 3), "u%s"};
const Texts attributeNames = {"uid", "a", "", "i", "$"};

class Maker {
public:
    Maker(const std::uint8_t* data, std::size_t size) : input(data, size) {}

    Case Make()
    {
        made.repository = OneOf({"r", "", "a\\b", "%my%", std::string("r\0s", 3)});
        made.configuration.exists = Mostly();
        MakeSettings();
        MakeFields();
        MakeTables();
        for (std::size_t count = Number(1, 2); count > 0; --count) {
            MakeUser();
        }
        made.logLevel = Mostly() ? 7 : static_cast<int>(Number(0, 7));
        made.connects = Mostly();
        made.securityManager = OneOffer();
        made.administration = OneOffer();
        made.requests.resize(Number(1, 4));
        for (Request& request : made.requests) {
            MakeRequest(request);
        }
        made.steps.resize(Number(0, 2));
        for (Step& step : made.steps) {
            step.text = List(tokens);
            step.values = Several(resources, 3);
            step.sought = OnePermission();
        }
        return std::move(made);
    }

private:
    // The smallest when the input is used up.
    std::size_t Number(std::size_t smallest, std::size_t largest)
    {
        return input.ConsumeIntegralInRange(smallest, largest);
    }

    bool Mostly() { return Number(0, 15) != 15; }

    const std::string& OneOf(const Texts& choices) { return choices[Number(0, choices.size() - 1)]; }

    Offer OneOffer() { return Mostly() ? Offer::connects : Number(0, 1) == 0 ? Offer::refuses : Offer::isMissing; }

    // Parts of templates and any bytes.
    std::string Composed(std::size_t mostPieces)
    {
        std::string text;
        for (std::size_t count = Number(0, mostPieces); count > 0; --count) {
            const std::size_t choice = Number(0, pieces.size());
            text += choice < pieces.size() ? pieces[choice] : input.ConsumeRandomLengthString(8);
        }
        return text;
    }

    std::string OneOrComposed(const Texts& choices)
    {
        const std::size_t choice = Number(0, choices.size() + 1);
        return choice < choices.size() ? choices[choice] : Composed(6);
    }

    // A text as a C interface passes it on.
    std::string WithoutNul(const std::string& text) { return text.c_str(); }

    Texts Several(const Texts& choices, std::size_t most)
    {
        Texts chosen(Number(0, most));
        for (std::string& text : chosen) {
            text = OneOf(choices);
        }
        return chosen;
    }

    std::string List(const Texts& choices)
    {
        std::string list;
        for (const std::string& text : Several(choices, 4)) {
            list += (list.empty() ? "" : ",") + text;
        }
        return list;
    }

    void Value(const std::string& path, const std::string& text)
    {
        if (Mostly()) {
            made.configuration.values[path] = text;
        }
    }

    // False: there is none.
    bool Node(const std::string& path, const Texts& names)
    {
        if (!Mostly()) {
            return false;
        }
        made.configuration.nodes[path] = names;
        if (!Mostly()) {
            made.configuration.nodes[path].reset();
        }
        return true;
    }

    void MakeSettings()
    {
        const std::string path = access + "repositories\\" + made.repository;
        Node(path, {});
        Value(path + "\\hide_all_filter", OneOf({"1 = 0", "", "hide"}));
        Value(path + "\\default_filter", OneOf({"0 = 1", "", "default"}));
        Value(path + "\\filter_delimiter", OneOrComposed(separators));
        Value(path + "\\single_equal_operator", OneOrComposed({"=", " is "}));
        Value(path + "\\multiple_equal_operator", OneOrComposed({"in", " among "}));
        Value(path + "\\value_multiplicity_delimiter", OneOrComposed(separators));
        Value(path + "\\value_multiplicity_prefix", OneOrComposed({"(", "['"}));
        Value(path + "\\value_multiplicity_suffix", OneOrComposed({")", "']"}));
    }

    void MakeFields()
    {
        const Texts names = Several({"f", "g", "h", "", "%s"}, 4);
        Node(access + "fields", names);
        for (const std::string& name : names) {
            const std::string path = access + "fields\\" + name + "\\" + made.repository;
            if (made.configuration.nodes.count(path) == 0 && Node(path, {})) {
                MakeDefinition(path);
            }
        }
    }

    void MakeDefinition(const std::string& path)
    {
        Value(path + "\\permission_name", OneOf(permissionNames));
        if (Mostly()) {
            made.configuration.values[path + "\\permission_value"] = std::to_string(static_cast<std::int32_t>(Bits()));
        }
        Value(path + "\\conditions_delimiter", OneOrComposed(separators));
        Value(path + "\\my_field", OneOf({"", "$uid$", "$a$", "uid", "$", "$$", "xa"}));
        const std::size_t count = Number(0, 3);
        for (std::size_t n = 1; n <= count; ++n) {
            const std::string number = std::to_string(n);
            Value(path + "\\condition" + number, OneOrComposed(templates));
            Value(path + "\\mandatory_fields" + number, List(tokens));
            Value(path + "\\replace_fields" + number, List(tokens));
            Value(path + "\\values_function" + number,
                  OneOf({"", "CodeToDisplayName", "SiteIdToIssuer", "codetodisplayname", "%s"}));
            Value(path + "\\values_function_config_string" + number, OneOf(tables));
        }
    }

    void MakeTables()
    {
        for (const std::string& table : tables) {
            const std::string path = root + "applications\\codes\\" + table;
            const Texts names = Several(codes, 4);
            Node(path, names);
            for (const std::string& code : names) {
                Value(path + "\\" + code + "\\display_name", OneOrComposed({"Name", "%my%"}));
            }
        }
        const std::string issuer = R"(applications\norvale\pix\assigning_authority\value)";
        const Texts sites = Several(codes, 4);
        Node(root + "sites", sites);
        for (const std::string& site : sites) {
            Value(root + "sites\\" + site + "\\" + issuer, OneOrComposed({"Issuer", "%my%"}));
        }
        Value(root + issuer, OneOrComposed({"Default", "%my%"}));
    }

    std::uint32_t Bits()
    {
        constexpr std::uint32_t usual[] = {1, 3, 0xffffffff, 1, 3, 0, 2, 0x80000000, 0x7fffffff};
        return usual[Number(0, std::size(usual) - 1)];
    }

    PermissionBase OnePermission()
    {
        const std::string& name = OneOf(permissionNames);
        const std::uint32_t value = Bits();
        const bool hasResource = Mostly();
        const std::string resource = hasResource ? OneOrComposed(resources) : "";
        return {name.c_str(), value, hasResource ? resource.c_str() : nullptr, Number(0, 1) == 1};
    }

    void MakeUser()
    {
        testing::User user;
        madeNames.push_back(WithoutNul(OneOf(userNames)));
        user.group = OneOf({"g", "", "%s"});
        for (const std::string& name : Several(attributeNames, 4)) {
            user.attributes[name] = WithoutNul(OneOrComposed({"u1", "", "%my%"}));
        }
        for (std::size_t count = Number(0, 6); count > 0; --count) {
            user.permissions.push_back(OnePermission());
        }
        made.users.try_emplace(madeNames.back(), std::move(user));
    }

    void MakeRequest(Request& request)
    {
        request.road = static_cast<Road>(Number(0, 2));
        request.user = Mostly() ? OneOf(madeNames) : OneOf(userNames);
        request.address = OneOf({"10.0.0.1", "", std::string("1\0 2", 4)});
        request.hasInterface = Mostly();
        request.hasList = Mostly();
        request.failedResources = Mostly() ? 0 : static_cast<unsigned>(Number(1, 3));
        request.missingDetails = Mostly() ? 0 : static_cast<unsigned>(Number(1, 8));
    }

    FuzzedDataProvider input;
    Texts madeNames; // of the users
    Case made;
};

} // namespace

Case MakeCase(const std::uint8_t* data, std::size_t size)
{
    return Maker(data, size).Make();
}

} // namespace secm::fuzzing
