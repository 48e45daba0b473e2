"""End-to-end tests: keyvora, a real spreadsheet and a simulated user, judged by what can be seen."""
