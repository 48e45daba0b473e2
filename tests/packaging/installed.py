"""What an installation consists of, below its prefix."""

# Ready-made cheat sheets and the documents that they are of.
SHEETS = {
    "share/doc/keyvora/cheatsheet.html": "mappings.json",
    "share/doc/keyvora/cheatsheet-calc.html": "calc.json",
    "share/doc/keyvora/cheatsheet-gnumeric.html": "gnumeric.json",
}

INSTALLED = {
    "bin/keyvora",
    "bin/keyvora-mappings",
    "libexec/keyvora/keyvora-fetch",
    "libexec/keyvora/keyvora-tap",
    "share/applications/org.keyvora.keyvora.desktop",
    "share/bash-completion/completions/keyvora-mappings",
    *SHEETS,
    "share/fish/vendor_completions.d/keyvora-mappings.fish",
    "share/icons/hicolor/scalable/apps/keyvora.svg",
    "share/keyvora/Info.plist",
    "share/keyvora/keyvora_keyvora.bundle/calc.json",
    "share/keyvora/keyvora_keyvora.bundle/gnumeric.json",
    "share/keyvora/keyvora_keyvora.bundle/mappings.json",
    "share/keyvora/mappings.schema.json",
    "share/man/man1/keyvora-mappings.1",
    "share/man/man1/keyvora.1",
    "share/metainfo/org.keyvora.keyvora.metainfo.xml",
    "share/zsh/site-functions/_keyvora-mappings",
}
