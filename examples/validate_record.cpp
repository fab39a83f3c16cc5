// Checks the fields of a customer record against the facets of their types, and says what is wrong with it.

#include <iostream>
#include <string>
#include <vector>

#include <tessit/tessit.h>

namespace {

struct Customer {
    QeCString name;
    QeCString country;
    QeCString postcode;
    std::vector<QeCString> phones;
};

// One validator a type: its patterns stay compiled from record to record.
class CustomerValidator {
public:
    // What is wrong with the customer; nothing when all is well.
    std::vector<std::string> check(const Customer& customer) {
        record.clear();
        checkName(customer.name);
        checkCountry(customer.country);
        checkPostcode(customer.postcode);
        checkPhones(customer.phones);
        std::vector<std::string> complaints;
        for (const QeXmlSchemaError& error : record.getErrors())
            complaints.emplace_back(error.what());
        return complaints;
    }

    bool isValid() const { return record.isValid(); }

private:
    void checkName(const QeCString& value) {
        name.clear();
        name.checkMinLength(value, "1");
        name.checkMaxLength(value, "40");
        name.checkWhiteSpace(value, "collapse");
        record.isValid(name);
    }

    void checkCountry(const QeCString& value) {
        country.clear();
        for (const char* allowed : {"DE", "ES", "GB"})
            country.checkEnumeration(value, allowed);
        country.checkEnumerations();
        record.isValid(country);
    }

    void checkPostcode(const QeCString& value) {
        postcode.clear();
        postcode.checkPattern(value, "^[0-9]{5}\\z");
        postcode.checkPattern(value, "^[A-Z]{1,2}[0-9][0-9A-Z]? [0-9][A-Z]{2}\\z");
        postcode.checkPatterns();
        record.isValid(postcode);
    }

    void checkPhones(const std::vector<QeCString>& values) {
        phones.clear();
        phones.checkVectorBounds(static_cast<int>(values.size()), 1, 3);
        record.isValid(phones);
    }

    QeXmlValidator record{"customer"};
    QeXmlValidator name{"name"};
    QeXmlValidator country{"country"};
    QeXmlValidator postcode{"postcode"};
    QeXmlValidator phones{"phones "};
};

bool hasComplaints(CustomerValidator& validator, const Customer& customer, std::size_t expected) {
    const std::vector<std::string> complaints = validator.check(customer);
    std::cout << customer.name << ": " << (validator.isValid() ? "valid" : "not valid") << '\n';
    for (const std::string& complaint : complaints)
        std::cout << "  " << complaint << '\n';
    return complaints.size() == expected && validator.isValid() == (expected == 0);
}

}  // namespace

int main() {
    CustomerValidator validator;
    bool asExpected = true;
    try {
        asExpected &= hasComplaints(validator, {"Ana Ruiz", "ES", "28013", {"+34 910 000 000"}}, 0);
        asExpected &= hasComplaints(validator, {"Bo  Lee", "gb", "SW1A", {}}, 4);
        asExpected &= hasComplaints(validator, {"Cy Hall", "GB", "SW1A 1AA", {"1", "2", "3", "4"}}, 1);
    } catch (const Qexmsg& error) {  // a pattern that cannot be used
        std::cerr << error.why() << '\n';
        return 1;
    }
    return asExpected ? 0 : 1;
}
