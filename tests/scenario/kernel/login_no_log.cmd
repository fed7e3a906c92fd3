gone
rm_file log -ext
login
after
q
