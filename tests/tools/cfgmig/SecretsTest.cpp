// Tests of what counts as a secret.

#include "Secrets.h"

#include <gtest/gtest.h>

namespace {

using tool::isSecret;

TEST(Secrets, AreTheValuesOfPasswordAndKeyAttributesInAnyLetterCase) {
  for (const char* name :
       {"zor-slapdAdminPW", "ZOR-SLAPDDBUSERPW", "zor-slapdMasterPW", "zor-slapdPeerPW", "zor-slapdKeyStorePW",
        "userPassword", "userPassword;lang-de", "zor-slapdPrivateKey", "zor-apiToken", "zor-sharedSecret",
        "zor-slapdStashPhrase", "userPKCS12", "krbKeytab", "cookie"}) {
    EXPECT_TRUE(isSecret(name, "x")) << name;
    EXPECT_TRUE(isSecret(name, "")) << name;
  }
}

TEST(Secrets, AreNotSettingsThatAreOnlyAboutPasswords) {
  for (const char* name : {"zor-slapdPwEncryption", "zor-slapdPwMinLength", "zor-slapdKeyStore", "zor-slapdPort", "cn",
                           "objectClass", "zor-slapdSortKeyLimit"}) {
    EXPECT_FALSE(isSecret(name, "SHA")) << name;
  }
  EXPECT_FALSE(isSecret("objectclass", "zor-slapdPasswordRules"));
  EXPECT_FALSE(isSecret("zor-slapdAdminRole", "PasswordReset"));
}

TEST(Secrets, AreValuesThatSetOne) {
  for (const char* value : {"DB_PASSWORD=x", "ACME_TOKEN = x", "postoperation lib.so init host=a pw=x", "{sealed}x",
                            "{AES256}x", "{\"secret\": \"x\"}", "ldap://reader:x@host:389/o=a", "API_KEY=x", "DB2PWD x",
                            "lib.so Init -w x", "lib.so Init \"bindpw x\"", "pass phrase: x", "Kennwort=x",
                            "Authorization: Basic x", "init pin=x", "lib.so --password x"}) {
    EXPECT_TRUE(isSecret("zor-slapdSetenv", value)) << value;
  }
}

TEST(Secrets, AreValuesThatAreHashedOrSealed) {
  for (const char* value : {"{SSHA}x", "{ssha512}x", "{SHA}x", "{SMD5}x", "{MD5}x", "{CRYPT}$1$x", "{PBKDF2-SHA512}1$x",
                            "{ARGON2}$argon2id$x", "{x-own.scheme_1/2}x", " {IMASK}x", "hash {SSHA}x", "a={b} {Crypt}x",
                            "$6$salt$x", "$2b$12$x", "$argon2id$v=19$x"}) {
    EXPECT_TRUE(isSecret("description", value)) << value;
  }
  for (const char* value :
       {"{SSHA}", "{}x", "{", "{x", "{a b}x", "see {1}x", "{\"a\": 1}", "x {GUID}y", "$HOME/x", "$6"}) {
    EXPECT_FALSE(isSecret("description", value)) << value;
  }
}

TEST(Secrets, AreNotOrdinaryValues) {
  for (const char* value : {"", "=", ":", "LANG=C.UTF-8", "ldap://central.acme.example:389",
                            "preoperation  libzorldapcl.so CLInit cn=changelog", "mail=a@b", "/opt/acme/pki/ldap4.p12",
                            "cn=crl reader,o=Acme", "http://host/x@y", "lib.so -wide x", "Password rules of Acme",
                            "pwd", "pw ", "ends with pw"}) {
    EXPECT_FALSE(isSecret("zor-slapdSetenv", value)) << value;
  }
}

}  // namespace
