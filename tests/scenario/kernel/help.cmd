hlp
help
help nonsense
help water_waves
help do l=5

q
ll
help end_do -f
h index
index nonsense
index database l=4


index general
help quelor-zt
q
