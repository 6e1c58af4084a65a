# Sourced by what makes a new Debian: `skip REASON`, and `mirror`, from where this machine has its own packages.
skip() {
  echo "Skipped: $*"
  exit 77
}
[ "$(id -u)" -eq 0 ] || skip "only root can make a root"
command -v mmdebstrap >/dev/null || skip "mmdebstrap is not installed"
mirror=$(apt-get indextargets --format '$(REPO_URI)' 'Created-By: Packages' 'Origin: Debian' 'Codename: bookworm' |
  head -n 1)
[ -n "$mirror" ] || skip "apt has no source of Debian 12 here"
