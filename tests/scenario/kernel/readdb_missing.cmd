db
seti a v=1
readdb nosuchfile
