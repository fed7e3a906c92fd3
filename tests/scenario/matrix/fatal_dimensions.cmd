mat
seti kept v=1
inputi a r=2000000000 c=2000000000
