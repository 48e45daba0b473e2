"""A private desktop with keyvora and a spreadsheet, a simulated user, and functions that read the results.

Importing this package has no side effects. `PrivateDesktop` sets this process's environment, so a process can have only
one desktop. Import GTK or AT-SPI only after the desktop is running.
"""
