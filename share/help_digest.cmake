# Writes the SHA-256 digest of the file HELP as a constant into the header DIGEST.
file(SHA256 ${HELP} digest)
file(WRITE ${DIGEST} "constexpr char HelpDigest[] = \"${digest}\";\n")
