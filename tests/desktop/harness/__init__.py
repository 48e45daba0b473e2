"""A private desktop on which keyvora and a spreadsheet run, a simulated user, and readers of what happened.

Importing this package touches nothing. `PrivateDesktop` sets this process's environment, so a process has
one desktop in its life; import nothing of GTK or AT-SPI before it stands.
"""
