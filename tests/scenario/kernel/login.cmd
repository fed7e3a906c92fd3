logged
login
after
login -noecho
in_log_again
q
