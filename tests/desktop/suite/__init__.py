"""End-to-end tests: keyvora, a real spreadsheet and a simulated user. They check visible results."""
